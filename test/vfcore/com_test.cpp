#include "support/guardedimage.h"

#include <gtest/gtest.h>

using namespace vfil::test;

namespace {

constexpr CLSID kClass{0x12345678, 0x1234, 0x1234, {1, 2, 3, 4, 5, 6, 7, 8}};

HRESULT Create(const CLSID& id, void** object, unsigned long context = CLSCTX_INPROC_SERVER)
{
    return CoCreateInstance(id, nullptr, context, IID_IPXImage, object);
}

TEST(Com, AnUnregisteredClassIsRefused)
{
    void* object = &object;
    EXPECT_EQ(Create(kClass, &object), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(object, nullptr);
    object = &object;
    EXPECT_EQ(CoGetClassObject(kClass, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, &object),
              REGDB_E_CLASSNOTREG);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(CoRevokeClassObject(987654), E_INVALIDARG);
}

TEST(Com, ARegisteredFactoryMakesPicturesUntilItIsRevoked)
{
    GuardedImageFactory factory;
    unsigned long cookie = 0;
    ASSERT_EQ(CoRegisterClassObject(kClass, &factory, &cookie), S_OK);
    EXPECT_NE(cookie, 0U);
    EXPECT_EQ(factory.references, 2U);

    void* object = nullptr;
    ASSERT_EQ(Create(kClass, &object), S_OK);
    auto* image = static_cast<IPXImage*>(object);
    EXPECT_EQ(image->SetFormat(&PXFormat_Mono16), S_OK);
    EXPECT_EQ(image->SetDimensions(3, 2), S_OK);
    EXPECT_EQ(image->Release(), 0U);
    EXPECT_TRUE(FAILED(CoCreateInstance(kClass, nullptr, CLSCTX_INPROC_SERVER, kClass, &object)));
    EXPECT_EQ(object, nullptr);

    ASSERT_EQ(CoGetClassObject(kClass, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, &object), S_OK);
    EXPECT_EQ(object, static_cast<IClassFactory*>(&factory));
    EXPECT_EQ(factory.references, 3U);
    factory.Release();

    EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
    EXPECT_EQ(factory.references, 1U);
    EXPECT_EQ(Create(kClass, &object), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(CoRevokeClassObject(cookie), E_INVALIDARG);
}

TEST(Com, ALaterRegistrationComesFirst)
{
    GuardedImageFactory factories[2];
    unsigned long cookies[2];
    for (int i = 0; i < 2; ++i)
        ASSERT_EQ(CoRegisterClassObject(kClass, &factories[i], &cookies[i]), S_OK);
    EXPECT_NE(cookies[0], cookies[1]);
    const auto current = [] {
        void* object = nullptr;
        EXPECT_EQ(CoGetClassObject(kClass, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, &object), S_OK);
        auto* factory = static_cast<IClassFactory*>(object);
        factory->Release();
        return factory;
    };
    EXPECT_EQ(current(), &factories[1]);
    CoRevokeClassObject(cookies[1]);
    EXPECT_EQ(current(), &factories[0]);
    CoRevokeClassObject(cookies[0]);
}

} // namespace
