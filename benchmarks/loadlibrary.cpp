/// Loads the library that is named, and ends; without a name does nothing. What footprint.cpp starts to see how long
/// loading takes.

#include <dlfcn.h>

int main(int argc, char** argv)
{
  if (argc < 2)
    return 0;
  return dlopen(argv[1], RTLD_NOW) != nullptr ? 0 : 1;
}
