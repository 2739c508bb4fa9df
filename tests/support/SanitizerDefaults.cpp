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

// Boost.Thread's record of a thread is deleted by whoever lets go of it last, the thread or its
// owner. The thread counts down inside Boost's library, which is not compiled with the sanitizer:
// it sees no order between that and a deletion by the owner.
//
// GNUstep and the Objective-C run time take their own two locks in either order while a class is
// used first; neither is compiled with the sanitizer, so it cannot see why that is safe. For the
// same reason calls of the C library that GNUstep itself makes look unordered; ours do not count
// among them, on whatever run loop they are made.
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions()
{
    return "deadlock:libgnustep-base\n"
           "deadlock:libobjc\n"
           "called_from_lib:libgnustep-base.so\n"
           "race:boost::detail::thread_data_base::~thread_data_base\n";
}
