/// \file
/// A program that knows nothing of the library, loads a plug-in that uses it, and unloads it: plug-in and
/// library must go from memory. It ends with 0 when they do.

#include <dlfcn.h>

#include <cstdio>
#include <cstring>
#include <initializer_list>

namespace {

bool IsMapped(const char* name)
{
    std::FILE* maps = std::fopen("/proc/self/maps", "r");
    char line[4096];
    bool found = false;
    while (maps != nullptr && std::fgets(line, sizeof line, maps) != nullptr)
        found = found || std::strstr(line, name) != nullptr;
    if (maps != nullptr) std::fclose(maps);
    return found;
}

int Fail(const char* what)
{
    std::puts(what);
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) return Fail("usage: unload PLUGIN");
    void* plugin = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (plugin == nullptr) return Fail(dlerror());
    const auto run = reinterpret_cast<int (*)()>(dlsym(plugin, "RunProcessors"));
    if (run == nullptr || run() != 1) return Fail("not so: the plug-in's processors run");
    if (!IsMapped("libvfil.so")) return Fail("not so: a loaded library is seen");
    dlclose(plugin);
    int left = 0;
    for (const char* name : {"libvfil.so", "vfil_plugin"}) {
        if (!IsMapped(name)) continue;
        std::printf("still in memory after dlclose: %s\n", name);
        ++left;
    }
    if (left == 0) std::puts("plug-in and library are unloaded");
    return left;
}
