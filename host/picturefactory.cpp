/// \file
/// The class factory of host pictures, and its registration.

#include <vfil/host/picturefactory.h>

#include <vfil/host/picture.h>

#include <new>

namespace vfil::host {

namespace {

/// Lives as long as its registration, so that its references need no count.
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

/// Takes the factory back when the host's library goes.
class Registration {
public:
    Registration()
    {
        if (FAILED(vfILRegisterClass(CLSID_PXImage, &m_factory, &m_cookie))) throw std::bad_alloc();
    }
    ~Registration() { vfILRevokeClass(m_cookie); }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

private:
    PictureFactory m_factory;
    unsigned long m_cookie = 0;
};

} // namespace

void RegisterPictureClass()
{
    static const Registration registration;
}

} // namespace vfil::host
