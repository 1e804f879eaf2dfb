// Comes behind the headers of the system and the libraries. From here on the compiler is taken for Visual Studio's.

#undef __GNUC__
#undef __GNUC_MINOR__
#undef __GNUC_PATCHLEVEL__
#undef __GNUG__
#undef __MINGW32__
#undef __MINGW64__
#define _MSC_VER 1930

// Instructions that mingw's intrin.h does not have.
extern "C" void __halt();
extern "C" void __ud2();

// Declared by mingw only.
#pragma GCC poison asm asprintf gettimeofday gmtime_r localtime_r setenv ssize_t strcasecmp strtok_r usleep
