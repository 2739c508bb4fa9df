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
