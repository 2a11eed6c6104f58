/// \file
/// The registry of class factories, for hosts on systems without one.

#include <vfil/image.h>

#include <algorithm>
#include <mutex>
#include <new>
#include <vector>

namespace {

struct Registration {
    CLSID classId;
    IClassFactory* factory;
    unsigned long cookie;
};

struct Registry {
    std::mutex lock;
    std::vector<Registration> entries;
    unsigned long lastCookie = 0;
};

Registry& TheRegistry()
{
    // Never destroyed: a host's static objects may revoke after the statics of this library are gone.
    static auto* registry = new Registry;
    return *registry;
}

/// The newest factory of a class with a reference added, or null.
IClassFactory* FindFactory(const CLSID& classId)
{
    Registry& registry = TheRegistry();
    const std::lock_guard guard(registry.lock);
    const auto found = std::find_if(registry.entries.rbegin(), registry.entries.rend(),
                                    [&](const Registration& entry) { return entry.classId == classId; });
    if (found == registry.entries.rend()) return nullptr;
    found->factory->AddRef();
    return found->factory;
}

} // namespace

vfILResult vfILRegisterClass(const CLSID& classId, IClassFactory* factory, unsigned long* cookie)
{
    if (factory == nullptr || cookie == nullptr) return E_POINTER;
    try {
        Registry& registry = TheRegistry();
        const std::lock_guard guard(registry.lock);
        registry.entries.push_back({classId, factory, registry.lastCookie + 1});
        *cookie = ++registry.lastCookie;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
    factory->AddRef();
    return S_OK;
}

vfILResult vfILRevokeClass(unsigned long cookie)
{
    IClassFactory* factory = nullptr;
    {
        Registry& registry = TheRegistry();
        const std::lock_guard guard(registry.lock);
        const auto found = std::ranges::find(registry.entries, cookie, &Registration::cookie);
        if (found == registry.entries.end()) return E_INVALIDARG;
        factory = found->factory;
        registry.entries.erase(found);
    }
    factory->Release();
    return S_OK;
}

HRESULT CoRegisterClassObject(const CLSID& classId, IClassFactory* factory, unsigned long* cookie)
{
    return vfILRegisterClass(classId, factory, cookie);
}

HRESULT CoRevokeClassObject(unsigned long cookie)
{
    return vfILRevokeClass(cookie);
}

HRESULT CoGetClassObject(const CLSID& classId, unsigned long context, void* reserved, const IID& riid,
                         void** factory)
{
    if (factory == nullptr) return E_POINTER;
    *factory = nullptr;
    if ((context & CLSCTX_INPROC_SERVER) == 0 || reserved != nullptr) return E_INVALIDARG;
    IClassFactory* found = FindFactory(classId);
    if (found == nullptr) return REGDB_E_CLASSNOTREG;
    const HRESULT result = found->QueryInterface(riid, factory);
    found->Release();
    return result;
}

HRESULT CoCreateInstance(const CLSID& classId, IUnknown* outer, unsigned long context, const IID& riid,
                         void** object)
{
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    void* found = nullptr;
    const HRESULT result = CoGetClassObject(classId, context, nullptr, IID_IClassFactory, &found);
    if (FAILED(result)) return result;
    auto* factory = static_cast<IClassFactory*>(found);
    const HRESULT created = factory->CreateInstance(outer, riid, object);
    factory->Release();
    return created;
}
