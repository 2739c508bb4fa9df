#import "OpenEditor.h"

#import "CurvePopUpButton.h"
#import "GuiTest.h"
#import "TarvelCocoaViewFactory.h"

#include <cstdarg>
#include <cstdlib>
#include <utility>

/// Records instead of raising. No NSAssertionHandler, because that one's method must not return.
@interface RecordingAssertionHandler : NSObject {
@public
    std::vector<editor_test::Failure> failures;
}
@end

@implementation RecordingAssertionHandler

- (void)handleFailureInMethod:(SEL)selector
                       object:(id)object
                         file:(NSString*)fileName
                   lineNumber:(NSInteger)line
                  description:(NSString*)format, ...
{
    va_list arguments;
    va_start(arguments, format);
    NSString* const text = [[[NSString alloc] initWithFormat:format
                                                   arguments:arguments] autorelease];
    va_end(arguments);
    (void)line;
    failures.push_back({[NSStringFromSelector(selector) UTF8String],
                        [[fileName lastPathComponent] UTF8String],
                        object,
                        [text UTF8String]});
}

@end

namespace editor_test {

namespace {

NSString* const kHandlerKey = @"NSAssertionHandler";

int g_localisationCount = 0;
IMP g_localizedString = nullptr;

id countingLocalizedString(id self, SEL selector, NSString* key, NSString* value, NSString* table)
{
    if ([key isEqualToString:@"Some view-only string"]) {
        ++g_localisationCount;
    }
    using Function = id (*)(id, SEL, NSString*, NSString*, NSString*);
    return reinterpret_cast<Function>(g_localizedString)(self, selector, key, value, table);
}

// From the start of the process, because only its first view localises.
void countLocalisations()
{
    const SEL selector = @selector(localizedStringForKey:value:table:);
    const Method method = class_getInstanceMethod([NSBundle class], selector);
    g_localizedString =
        method_setImplementation(method, reinterpret_cast<IMP>(countingLocalizedString));
}

} // namespace

int localisationCount() { return g_localisationCount; }

NSBundle* editorBundle()
{
    if (g_localizedString == nullptr) {
        countLocalisations();
    }
    const char* const other = std::getenv("EDITOR_TEST_BUNDLE");
    const char* const path = other != nullptr ? other : EDITOR_BUNDLE;
    return [NSBundle bundleWithPath:[NSString stringWithUTF8String:path]];
}

TarvelCocoaViewFactory* newFactory()
{
    Class const factory = [editorBundle() classNamed:@"TarvelCocoaViewFactory"];
    return [[[factory alloc] init] autorelease];
}

bool savePicture(NSView* view, const std::string& path)
{
    @autoreleasepool {
        [view display];
        [view lockFocus];
        NSBitmapImageRep* const picture =
            [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
        [view unlockFocus];
        NSData* const png = [picture representationUsingType:NSPNGFileType properties:nil];
        return [png writeToFile:[NSString stringWithUTF8String:path.c_str()] atomically:YES];
    }
}

OpenEditor::OpenEditor(AudioUnit unit)
{
    @autoreleasepool {
        m_view = (TarvelCocoaView*)[[newFactory() uiViewForAudioUnit:unit
                                                            withSize:NSMakeSize(1, 1)] retain];
        if (m_view == nil) {
            return;
        }
        m_window = gui_test::makeWindow([m_view frame].size);
        [[m_window contentView] addSubview:m_view];
        [m_window setInitialFirstResponder:m_view];
        [m_window display];
    }
}

void OpenEditor::close()
{
    @autoreleasepool {
        [m_window makeFirstResponder:nil];
        [m_view removeFromSuperview];
        [std::exchange(m_view, nil) release];
        [m_window close];
        [std::exchange(m_window, nil) release];
    }
}

id OpenEditor::outlet(const char* name) const
{
    id& control = m_outlets[name];
    if (control == nil) {
        control = [m_view valueForKey:[NSString stringWithUTF8String:name]];
    }
    if (control == nil) {
        throw std::logic_error(std::string("no outlet ") + name);
    }
    return control;
}

std::string OpenEditor::text(const char* name) const
{
    NSTextField* const field = outlet(name);
    NSText* const editor = [field currentEditor];
    return [editor != nil ? [editor string] : [field stringValue] UTF8String];
}

bool OpenEditor::enabled(const char* name) const { return [outlet(name) isEnabled]; }

double OpenEditor::doubleValue(const char* name) const { return [outlet(name) doubleValue]; }

long long OpenEditor::samples(const char* name) const
{
    id const control = outlet(name);
    return [control isKindOfClass:[NSStepper class]] ? [control integerValue]
                                                     : [[control objectValue] longLongValue];
}

std::string OpenEditor::title(const char* name) const
{
    NSString* const title = [outlet(name) titleOfSelectedItem];
    return title != nil ? [title UTF8String] : "";
}

NSInteger OpenEditor::curve(const char* name) const
{
    return [(CurvePopUpButton*)outlet(name) curve];
}

NSPoint OpenEditor::point(const char* name, double x, double y) const
{
    NSView* const control = outlet(name);
    const NSSize size = [control bounds].size;
    const double fromBottom = [control isFlipped] ? 1 - y : y;
    return [control convertPoint:NSMakePoint(size.width * x, size.height * fromBottom) toView:nil];
}

void OpenEditor::click(const char* name, double x, double y)
{
    gui_test::drag(m_window, {point(name, x, y)});
}

void OpenEditor::typeWithoutReturn(const char* name, NSString* text)
{
    click(name);
    [[outlet(name) currentEditor] selectAll:nil];
    for (NSUInteger i = 0; i < [text length]; ++i) {
        gui_test::pressKey(m_window, [text substringWithRange:NSMakeRange(i, 1)]);
    }
}

void OpenEditor::type(const char* name, NSString* text)
{
    typeWithoutReturn(name, text);
    gui_test::pressKey(m_window, @"\r");
}

void OpenEditor::choose(const char* name, NSInteger index)
{
    NSPopUpButton* const button = outlet(name);
    NSMenuView* const list = [[button menu] menuRepresentation];
    [list sizeToFit];
    const double rowHeight = NSHeight([list rectOfItemAtIndex:0]);
    // The list opens with the selected item over the button.
    const double rows = static_cast<double>(index - [button indexOfSelectedItem]);
    const NSPoint from = pointOnScreen(m_window, point(name, 0.3, 0.5));
    NSArray* const words = [[NSString
        stringWithFormat:@"mousemove %.0f %.0f mousedown 1 sleep 0.1 mousemove %.0f %.0f sleep 0.1 "
                         @"mouseup 1 sleep 0.05",
                         from.x, from.y, from.x, from.y + rows * rowHeight]
        componentsSeparatedByString:@" "];
    if (!movePointer(words)) {
        throw std::runtime_error("xdotool failed");
    }
}

bool movePointer(NSArray* words)
{
    NSTask* const task = [[[NSTask alloc] init] autorelease];
    [task setLaunchPath:@"/usr/bin/xdotool"];
    [task setArguments:words];
    [task launch];
    const bool ended = gui_test::pumpUntil([task] { return ![task isRunning]; }, 10);
    gui_test::pump(0.02);
    return ended && [task terminationStatus] == 0;
}

NSPoint pointOnScreen(NSWindow* window, NSPoint point)
{
    const NSPoint onScreen = [window convertBaseToScreen:point];
    return NSMakePoint(onScreen.x, NSHeight([[window screen] frame]) - onScreen.y);
}

AssertionRecorder::AssertionRecorder() : m_handler([[RecordingAssertionHandler alloc] init])
{
    [[[NSThread currentThread] threadDictionary] setObject:m_handler forKey:kHandlerKey];
}

AssertionRecorder::~AssertionRecorder()
{
    [[[NSThread currentThread] threadDictionary] removeObjectForKey:kHandlerKey];
    [m_handler release];
}

std::vector<Failure> AssertionRecorder::takeFailures()
{
    return std::exchange(((RecordingAssertionHandler*)m_handler)->failures, {});
}

std::vector<std::string> AssertionRecorder::take()
{
    std::vector<std::string> texts;
    for (const Failure& failure : takeFailures()) {
        texts.push_back(failure.text);
    }
    return texts;
}

} // namespace editor_test
