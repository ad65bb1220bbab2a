// Serves one request of the parent that has started it: marrowpress-run LIBRARY

#include <dlfcn.h>
#include <unistd.h>

int main(int argc, char** argv) {
    constexpr int kNoLibrary = 127;
    void* const library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
    void* const serve = library ? dlsym(library, "mp_serve") : nullptr;
    return serve ? reinterpret_cast<int (*)(int)>(serve)(STDIN_FILENO) : kNoLibrary;
}
