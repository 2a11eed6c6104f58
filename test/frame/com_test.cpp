#include <vfil/image.h>

#include <gtest/gtest.h>

namespace {

constexpr CLSID kClass{0x12345678, 0x1234, 0x1234, {1, 2, 3, 4, 5, 6, 7, 8}};

/// Makes itself.
class Factory final : public IClassFactory {
public:
    int references = 1;

    HRESULT QueryInterface(const IID& riid, void** object) override
    {
        if (!(riid == IID_IClassFactory || riid == IID_IUnknown)) return E_NOINTERFACE;
        *object = this;
        AddRef();
        return S_OK;
    }
    unsigned long AddRef() override { return static_cast<unsigned long>(++references); }
    unsigned long Release() override { return static_cast<unsigned long>(--references); }
    HRESULT CreateInstance(IUnknown*, const IID& riid, void** object) override
    {
        return QueryInterface(riid, object);
    }
};

HRESULT Create(const IID& riid, void** object)
{
    return CoCreateInstance(kClass, nullptr, CLSCTX_INPROC_SERVER, riid, object);
}

TEST(Com, TheLatestRegisteredFactoryMakesTheObjects)
{
    Factory factories[2];
    unsigned long cookies[2] = {};
    void* object = &object;
    EXPECT_EQ(Create(IID_IUnknown, &object), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(object, nullptr);
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(CoRegisterClassObject(kClass, &factories[i], &cookies[i]), S_OK);
        EXPECT_EQ(Create(IID_IUnknown, &object), S_OK);
        EXPECT_EQ(object, &factories[i]);
        EXPECT_EQ(CoGetClassObject(kClass, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, &object), S_OK);
        EXPECT_EQ(object, &factories[i]);
        EXPECT_EQ(Create(kClass, &object), E_NOINTERFACE);
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(factories[i].references, 4) << "its own, the registry's and the two objects'";
    }
    EXPECT_NE(cookies[0], cookies[1]);
    EXPECT_EQ(CoRevokeClassObject(cookies[1]), S_OK);
    EXPECT_EQ(factories[1].references, 3);
    EXPECT_EQ(Create(IID_IUnknown, &object), S_OK);
    EXPECT_EQ(object, &factories[0]);
    EXPECT_EQ(CoRevokeClassObject(cookies[0]), S_OK);
    EXPECT_EQ(Create(IID_IUnknown, &object), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(CoRevokeClassObject(cookies[0]), E_INVALIDARG);
}

} // namespace
