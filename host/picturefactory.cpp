/// \file
/// The class factory of host pictures, and its registration.

#include "host/picturefactory.h"

#include "host/picture.h"

#include <mutex>
#include <new>

namespace vfil::host {

namespace {

/// Lives as long as the program, so that its references need no count.
class PictureFactory final : public IClassFactory {
public:
    HRESULT QueryInterface(const IID& riid, void** object) override
    {
        if (object == nullptr) return E_POINTER;
        const bool known = riid == IID_IUnknown || riid == IID_IClassFactory;
        *object = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }

    unsigned long AddRef() override { return 1; }
    unsigned long Release() override { return 1; }

    HRESULT CreateInstance(IUnknown* outer, const IID& riid, void** object) override
    {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        const PicturePtr picture = Picture::CreateEmpty();
        return picture ? picture->QueryInterface(riid, object) : E_OUTOFMEMORY;
    }
};

} // namespace

void RegisterPictureClass()
{
    static PictureFactory factory;
    static std::once_flag once;
    std::call_once(once, [] {
        unsigned long cookie = 0;
        if (FAILED(CoRegisterClassObject(CLSID_PXImage, &factory, &cookie))) throw std::bad_alloc();
    });
}

} // namespace vfil::host
