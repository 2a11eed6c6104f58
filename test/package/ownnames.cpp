/// \file
/// A host that has the names of the object model already, as macros and as other types than the library's,
/// and uses the library all the same. It ends with 0 when that works.

#include <cstdio>

// As a video card's kit may have them: a result of another width, an identifier by value, a struct behind a
// typedef.
#define S_OK ((HRESULT)0L)
#define E_FAIL ((HRESULT)0x80004005L)
#define SUCCEEDED(result) ((result) >= 0)
#define FAILED(result) ((result) < 0)
#define IID_IUnknown ((REFIID){0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}})
#define CLSCTX_INPROC_SERVER 1
typedef long HRESULT;
typedef struct _GUID {
    unsigned int Data1;
    unsigned short Data2;
    unsigned short Data3;
    unsigned char Data4[8];
} GUID;
typedef GUID IID, CLSID, REFIID;
class IUnknown {
public:
    virtual HRESULT QueryInterface(REFIID iid, void** object) = 0;
    virtual unsigned int AddRef() = 0;
    virtual unsigned int Release() = 0;
};
class IClassFactory;
extern "C" HRESULT CoRevokeClassObject(unsigned long cookie);

#define VFIL_NO_COM_NAMES
#include "tinypicture.h"

#include <vfil/vfil.h>

namespace {

int Miss(const char* what)
{
    std::printf("not so: %s\n", what);
    return 1;
}

} // namespace

int main()
{
    TinyPicture in(5, 3);
    TinyPicture out(5, 3);
    in.bytes[0] = 10;
    vfILInvertImg invert;
    invert.SetInputImg(&in);
    invert.SetOutputImg(&out);
    if (invert.Verify() != VFIL_SUCCESS || invert.Execute() != VFIL_SUCCESS) return Miss("invert runs");
    if (out.bytes[0] != 245 || out.bytes[1] != 255) return Miss("invert inverts");

    vfILSharpenImg sharpen; // needs a class of pictures
    sharpen.SetInputImg(&in);
    sharpen.SetOutputImg(&out);
    if (sharpen.Verify() != VFIL_FAILURE) return Miss("no class of pictures is refused");
    TinyFactory factory;
    if (sharpen.Verify() != VFIL_SUCCESS) return Miss("the host's class of pictures is found");
    std::puts("a host with names of its own works");
    return 0;
}
