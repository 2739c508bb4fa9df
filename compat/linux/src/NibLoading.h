#pragma once

#import <Foundation/Foundation.h>

#ifdef __cplusplus
extern "C" {
#endif

// What GNUstep's loader of interface descriptions (gui 0.29) keeps to the end of the process at
// each loading, and who lets go of it instead. Both repairs apply themselves to GNUstep's classes;
// the functions are there for tests, which try them on classes of their own. [main]

/// Puts the missing release into the question which of two formats a .xib has.
///
/// `+[GSXibKeyedUnarchiver checkXib5:]` is asked at each loading. It parses the whole description
/// into an NSXMLDocument that it owns, looks for a root element named "document" and returns
/// without a release: a tree for each loading, 0.32 MB for the editor's description.
///
/// @param loader  Class to repair; null is left alone.
/// @return YES when it was repaired. NO when nothing was done: it has no `+checkXib5:` from data to
///         BOOL, or one that keeps nothing.
__attribute__((visibility("default"))) BOOL AudioUnitCompatRepairFormatCheck(Class loader);

/// Gives a class the missing `-dealloc` that lets go of its class name and its extension.
///
/// An NSCustomView stands for a view of a custom class until that is made. It retains both texts
/// and has no `-dealloc`: the name stays for each custom view of each loading.
///
/// @param placeholder  Class to repair; null is left alone.
/// @return YES when it was repaired. NO when nothing was done: it has no setters for the two texts,
///         or a `-dealloc` of its own.
__attribute__((visibility("default"))) BOOL AudioUnitCompatRepairCustomView(Class placeholder);

#ifdef __cplusplus
}
#endif
