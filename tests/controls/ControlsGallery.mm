// Shows every control in every state and saves pictures of them:
//
//     controls_gallery -OutputFolder <folder> [-GSScaleFactor 2]
//
// rest.png has all controls enabled and disabled; focus-<n>.png and hover-<n>.png have the keyboard
// or the pointer on the n-th control.

#import "GuiTest.h"

#import "CurvePopUpButton.h"
#import "LengthTimeField.h"
#import "XeButton.h"
#import "XeLabel.h"
#import "XePalette.h"
#import "XeRadioCell.h"
#import "XeRadioMatrix.h"
#import "XeSlider.h"
#import "XeStepper.h"
#import "XeThresholdField.h"
#import "XeThresholdFormatter.h"

#include <cstdio>
#include <string>

@interface GalleryBackground : NSView
@end

@implementation GalleryBackground

- (BOOL)isOpaque
{
    return YES;
}

- (void)drawRect:(NSRect)rect
{
    [[XePalette color:XeTone::Window] set];
    NSRectFill(rect);
}

@end

namespace {

constexpr double kRowHeight = 32;
constexpr double kWidth = 560;
constexpr double kHeight = 400;

class Gallery {
public:
    explicit Gallery(NSString* folder) : m_folder(folder)
    {
        m_window = gui_test::makeWindow(NSMakeSize(kWidth, kHeight));
        NSView* const background = [[[GalleryBackground alloc]
            initWithFrame:NSMakeRect(0, 0, kWidth, kHeight)] autorelease];
        [m_window setContentView:background];
        for (const bool isEnabled : {true, false}) {
            fillColumn(isEnabled);
        }
    }
    ~Gallery()
    {
        [m_window close];
        [m_window release];
    }
    Gallery(const Gallery&) = delete;
    Gallery& operator=(const Gallery&) = delete;

    void saveAll()
    {
        // Nothing of the window is under the pointer, and no control has the keyboard.
        hover(NSMakePoint(kWidth - 2, 2));
        [m_window makeFirstResponder:nil];
        save("rest");
        int n = 0;
        for (NSView* view in [[m_window contentView] subviews]) {
            if (![view acceptsFirstResponder]) {
                continue;
            }
            ++n;
            [m_window makeFirstResponder:view];
            save("focus-" + std::to_string(n));
            [m_window makeFirstResponder:nil];
            hover(gui_test::centerOf(view));
            save("hover-" + std::to_string(n));
            hover(NSMakePoint(kWidth - 2, 2));
        }
    }

private:
    template <typename Control>
    Control* add(double x, double width, double height = 22)
    {
        const double y = kHeight - m_row * kRowHeight - 22 + (22 - height) / 2;
        Control* const control =
            [[[Control alloc] initWithFrame:NSMakeRect(m_left + x, y, width, height)] autorelease];
        [[m_window contentView] addSubview:control];
        [control setEnabled:m_isEnabled];
        return control;
    }

    void label(NSString* text)
    {
        ++m_row;
        [add<XeLabel>(0, 80) setStringValue:text];
    }

    void fillColumn(bool isEnabled)
    {
        m_isEnabled = isEnabled;
        m_left = isEnabled ? 20 : 290;
        m_row = -0.5;
        label(@"Function");
        [add<XePopUpButton>(84, 160) addItemWithTitle:@"Trim Start and End"];
        label(@"Unit");
        addRadios();
        label(@"Attack");
        addSlider(-24);
        label(@"In dB");
        addThreshold(YES, -12.5);
        addThreshold(YES, -60, 90);
        label(@"In percent");
        addThreshold(NO, 50);
        addThreshold(NO, 111.11, 90);
        label(@"Fade in");
        [add<CurvePopUpButton>(84, 160) setCurve:isEnabled ? 4 : 2];
        label(@"Length");
        addLength(zqposfmt_time_ms);
        label(@"Time code");
        addLength(zqposfmt_smpte_29_97_drop);
        label(@"Samples");
        addLength(zqposfmt_samples);
        label(@"Help");
        [add<XeButton>(84, 22) setTitle:@"?"];
        [add<XeButton>(116, 100) setTitle:@"Export"];
        XeSlider* const slider = add<XeSlider>(226, 22, 60);
        [slider setMaxValue:1];
        [slider setDoubleValue:0.4];
    }

    void addRadios()
    {
        XeRadioMatrix* const matrix = [[[XeRadioMatrix alloc]
              initWithFrame:NSMakeRect(m_left + 84, kHeight - m_row * kRowHeight - 22, 124, 22)
                       mode:NSRadioModeMatrix
                  cellClass:[XeRadioCell class]
               numberOfRows:1
            numberOfColumns:2] autorelease];
        [matrix setCellSize:NSMakeSize(60, 22)];
        [[matrix cellAtRow:0 column:0] setTitle:@"dB"];
        [[matrix cellAtRow:0 column:1] setTitle:@"%"];
        [[m_window contentView] addSubview:matrix];
        [matrix setEnabled:m_isEnabled];
    }

    void addSlider(double value)
    {
        XeSlider* const slider = add<XeSlider>(84, 160);
        [slider setMinValue:-60];
        [slider setMaxValue:0];
        [slider setDoubleValue:value];
    }

    void addThreshold(BOOL minFinity, double value, double x = 0)
    {
        XeThresholdField* const field = add<XeThresholdField>(84 + x, 74);
        [[field formatter] setMinimum:static_cast<id>(@(minFinity ? -60.0F : 0.0F))];
        [field setMinFinity:minFinity];
        [field setDoubleValue:value];
    }

    void addLength(_zqposfmt_format format)
    {
        LengthTimeField* const field = add<LengthTimeField>(84, 140);
        [field setFormat:format];
        [field setObjectValue:@(44100 * 71 + 11111)];
        [add<XeStepper>(227, 17) setMaxValue:100];
    }

    void hover(NSPoint point)
    {
        [NSApp postEvent:gui_test::mouseEvent(m_window, NSMouseMoved, point) atStart:NO];
        gui_test::pump(0.05);
    }

    void save(const std::string& name)
    {
        NSView* const view = [m_window contentView];
        [view display];
        [view lockFocus];
        NSBitmapImageRep* const picture =
            [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
        [view unlockFocus];
        NSData* const data = [picture representationUsingType:NSPNGFileType properties:@{}];
        NSString* const path = [m_folder stringByAppendingPathComponent:@((name + ".png").c_str())];
        if (![data writeToFile:path atomically:NO]) {
            std::fprintf(stderr, "cannot write %s\n", [path UTF8String]);
        }
    }

    NSString* m_folder;
    NSWindow* m_window;
    bool m_isEnabled = true;
    double m_left = 0;
    double m_row = 0;
};

} // namespace

int main()
{
    @autoreleasepool {
        NSString* const folder =
            [[NSUserDefaults standardUserDefaults] stringForKey:@"OutputFolder"];
        if (folder == nil) {
            std::fprintf(stderr, "usage: controls_gallery -OutputFolder <folder>\n");
            return 2;
        }
        [[NSUserDefaults standardUserDefaults] registerDefaults:@{@"GSSuppressAppIcon" : @(YES)}];
        [NSApplication sharedApplication];
        [NSApp finishLaunching];
        Gallery(folder).saveAll();
    }
    return 0;
}
