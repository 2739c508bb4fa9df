#import "CurvePopUpButton.h"

#include "CurveShape.h"

#import "XePalette.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kWidth = 18;
constexpr double kHeight = 12;
constexpr double kLineWidth = 1.5;
constexpr int kPieces = 12;

} // namespace

// Draws a curve at the resolution of whatever it is drawn on.
@interface XeCurvePicture : NSObject {
    int m_code;
}
- (id)initWithCode:(int)code;
- (void)drawCurve:(NSImageRep*)picture;
@end

@implementation XeCurvePicture

- (id)initWithCode:(int)code
{
    self = [super init];
    if (self != nil) {
        m_code = code;
    }
    return self;
}

// The accent is legible on light menus and on dark ones.
- (void)drawCurve:(NSImageRep*)picture
{
    NSBezierPath* const path = [NSBezierPath bezierPath];
    [path moveToPoint:NSMakePoint(1, 1)];
    for (int i = 1; i <= kPieces; ++i) {
        const double x = static_cast<double>(i) / kPieces;
        [path lineToPoint:NSMakePoint(1 + x * (kWidth - 2),
                                      1 + xenon::curve::gain(m_code, x) * (kHeight - 2))];
    }
    [path setLineWidth:kLineWidth];
    [[XePalette color:XeTone::Accent] set];
    [path stroke];
}

@end

namespace {

// One picture for each code, made once. An image keeps its representation but a representation
// does not keep what draws it.
NSImage* _pictureOf(int code)
{
    static NSImage* pictures[xenon::curve::kCodeCount];
    if (pictures[code] == nil) {
        XeCurvePicture* const drawer = [[XeCurvePicture alloc] initWithCode:code];
        NSCustomImageRep* const rep =
            [[NSCustomImageRep alloc] initWithDrawSelector:@selector(drawCurve:) delegate:drawer];
        [rep setSize:NSMakeSize(kWidth, kHeight)];
        pictures[code] = [[NSImage alloc] initWithSize:NSMakeSize(kWidth, kHeight)];
        [pictures[code] setCacheMode:NSImageCacheNever];
        [pictures[code] addRepresentation:rep];
        [rep release];
    }
    return pictures[code];
}

} // namespace

@implementation CurvePopUpButton

- (void)_addCurves
{
    [self removeAllItems];
    for (int code = 0; code < xenon::curve::kCodeCount; ++code) {
        [self addItemWithTitle:@(xenon::curve::name(code))];
        id<NSMenuItem> const item = [self lastItem];
        [item setTag:code];
        [item setImage:_pictureOf(code)];
    }
    [self setCurve:xenon::curve::Linear];
}

- (id)initWithFrame:(NSRect)frame pullsDown:(BOOL)pullsDown
{
    self = [super initWithFrame:frame pullsDown:pullsDown];
    if (self != nil) {
        [self _addCurves];
    }
    return self;
}

- (id)initWithCoder:(NSCoder*)coder
{
    self = [super initWithCoder:coder];
    if (self != nil) {
        [self _addCurves];
    }
    return self;
}

- (NSInteger)curve
{
    id<NSMenuItem> const item = [self selectedItem];
    return item != nil ? [item tag] : m_curve;
}

- (void)setCurve:(NSInteger)curve
{
    m_curve = curve;
    const NSInteger index = [self indexOfItemWithTag:curve];
    [self selectItem:index >= 0 ? [self itemAtIndex:index] : nil];
    [self setNeedsDisplay:YES];
}

@end
