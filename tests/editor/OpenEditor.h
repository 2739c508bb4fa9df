#pragma once

#import "TarvelCocoaView+Private.h"
#import "TarvelCocoaViewFactory.h"

#include <objc/runtime.h>

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

/// An open editor as a host shows it, and what tests ask of it. [main]
namespace editor_test {

/// The bundle under test, loaded from the path the build put it at (or from EDITOR_TEST_BUNDLE).
NSBundle* editorBundle();

/// A view factory of the bundle, autoreleased.
TarvelCocoaViewFactory* newFactory();

/// Value of an instance variable that key-value coding cannot read.
template <typename Value>
Value ivar(id object, const char* name)
{
    const Ivar variable = class_getInstanceVariable(object_getClass(object), name);
    if (variable == nullptr) {
        throw std::logic_error(std::string("no field ") + name);
    }
    return *reinterpret_cast<Value*>(reinterpret_cast<char*>(object) + ivar_getOffset(variable));
}

/// Saves what the window shows of `view` as a PNG file. False when it could not be written.
bool savePicture(NSView* view, const std::string& path);

/// The editor of one unit in a window of its own. Closed when it goes.
class OpenEditor {
public:
    /// Asks the factory for a view; `view()` is nil when it gave none.
    explicit OpenEditor(AudioUnit unit);
    ~OpenEditor() { close(); }
    OpenEditor(const OpenEditor&) = delete;
    OpenEditor& operator=(const OpenEditor&) = delete;

    /// Takes the view out of its window and gives it up. Harmless twice.
    void close();

    TarvelCocoaView* view() const { return m_view; }
    NSWindow* window() const { return m_window; }

    /// A control by the name of its outlet; the control itself also while it is being recorded.
    id outlet(const char* name) const;

    /// What a text control shows, also while it is edited.
    std::string text(const char* name) const;
    bool enabled(const char* name) const;
    double doubleValue(const char* name) const;
    long long samples(const char* name) const; // of a length field or its stepper
    std::string title(const char* name) const; // of a pop-up button's selected item
    NSInteger curve(const char* name) const;

    /// Clicks into a field, replaces its whole text by real key events; with Return at the end.
    void type(const char* name, NSString* text);
    void typeWithoutReturn(const char* name, NSString* text);

    /// Clicks the middle of a control, or a point given as fractions of its width and height.
    void click(const char* name, double x = 0.5, double y = 0.5);

    /// Chooses an item of a pop-up button with the real pointer: press, drag to the item, let go.
    void choose(const char* name, NSInteger index);

    /// Point of a control in its window, from fractions of its width and height.
    NSPoint point(const char* name, double x, double y) const;

private:
    TarvelCocoaView* m_view = nil;
    NSWindow* m_window = nil;
    mutable std::map<std::string, id> m_outlets; // as the description connected them
};

/// What an assertion handler was told of a failure.
struct Failure {
    std::string method;
    std::string file; // without its folders
    id object = nil;
    std::string text;
};

/// Keeps failed assertions, which then let the failed method go on.
class AssertionRecorder {
public:
    AssertionRecorder();
    ~AssertionRecorder();
    AssertionRecorder(const AssertionRecorder&) = delete;
    AssertionRecorder& operator=(const AssertionRecorder&) = delete;

    std::vector<std::string> take(); // texts since the last take
    std::vector<Failure> takeFailures();

private:
    id m_handler;
};

/// Runs xdotool with these words while the application goes on; false when it failed or took more
/// than ten seconds.
bool movePointer(NSArray* words);

/// A point of the window as the X server counts, from the top left of the screen.
NSPoint pointOnScreen(NSWindow* window, NSPoint point);

/// How often the process has asked for the localisation of the view's own text so far.
int localisationCount();

} // namespace editor_test
