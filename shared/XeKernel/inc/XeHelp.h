#pragma once

/// Asks for a page of the help without knowing who shows it.
///
/// Each request is a notification on the process's default notification centre, with no object:
///
///     name        "XeHelpNotification"
///     "anchor"    NSNumber, the topic (signed 32 bit)
///     "parent"    NSValue of a pointer, the caller's context; may be null
///
/// The topic numbers belong to whoever observes it. Observers are called before the function
/// returns, on the calling thread; with no observer nothing happens. [any]
class XeHelp {
public:
    /// @param topic   Number of the page; -1 is the start page.
    /// @param parent  The caller's context, handed to the observers as it is. Not kept, not
    ///                followed; may be null.
    static void Goto(int topic, void* parent);

    /// Goto(-1, nullptr): the start page.
    static void GotoHome();
};
