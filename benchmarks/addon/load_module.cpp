#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

/** Loads a shared library in a fresh process and prints how many microseconds that took. */
int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: load_module FILE\n");
        return 2;
    }
    const auto start = std::chrono::steady_clock::now();
    void* library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    const auto end = std::chrono::steady_clock::now();
    if (!library) {
        std::fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    std::printf("%.1f\n", std::chrono::duration<double, std::micro>(end - start).count());
    // The process ends without unloading: what is measured is the load.
    std::fflush(stdout);
    _Exit(0);
}
