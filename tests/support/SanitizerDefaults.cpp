// Compiled into every test program; without a sanitizer nobody calls these.

// The Objective-C run time, GNUstep and fontconfig keep their caches to the end of the process.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libobjc\n"
           "leak:libgnustep\n"
           "leak:libfontconfig\n"
           "leak:libX11\n";
}

// GNUstep and the Objective-C run time take their own two locks in either order while a class is
// used first; neither is compiled with the sanitizer, so it cannot see why that is safe.
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions()
{
    return "deadlock:libgnustep-base\n"
           "deadlock:libobjc\n";
}
