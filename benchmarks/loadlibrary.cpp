/// Loads the named library, and ends; without a name it does nothing. footprint.cpp runs it to measure the time of
/// loading.

#include <dlfcn.h>

int main(int argc, char** argv)
{
  if (argc < 2)
    return 0;
  return dlopen(argv[1], RTLD_NOW) != nullptr ? 0 : 1;
}
