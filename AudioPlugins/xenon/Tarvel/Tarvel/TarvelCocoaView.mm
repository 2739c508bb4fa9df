#import "TarvelCocoaView+Private.h"

namespace {

NSString* const kBundleIdentifier = @"audio.vanta.tarvel.view";

// Texts of the view that no interface description holds. Each is its own key until the first
// binding in the process puts the user's language in its place.
CFStringRef gTableLocalizeStr[] = {
    CFSTR("Some view-only string"),
};
bool sLocalized = false;

void _localizeOnce()
{
    if (sLocalized) {
        return;
    }
    CFBundleRef const bundle = CFBundleGetBundleWithIdentifier((CFStringRef)kBundleIdentifier);
    for (CFStringRef& text : gTableLocalizeStr) {
        text = CFBundleCopyLocalizedString(bundle, text, text, CFSTR("Localizable"));
    }
    sLocalized = true;
}

} // namespace

@implementation TarvelCocoaView

- (void)awakeFromNib
{
    NSBundle* const bundle = [NSBundle bundleForClass:[self class]];
    NSImage* const pattern =
        [[NSImage alloc] initByReferencingFile:[bundle pathForImageResource:@"PluginPattern"]];
    mBackgroundColor = [[NSColor colorWithPatternImage:pattern] retain];
    [pattern release];
}

- (void)dealloc
{
    [self _removeListeners];
    [mBackgroundColor release];
    [super dealloc];
}

- (void)setAU:(AudioUnit)audioUnit
{
    _localizeOnce();
    if (mAU != nullptr) {
        [self _removeListeners];
    }
    mAU = audioUnit;
    [self _addListeners];
    [self _synchronizeUIWithParameterValues];
}

- (void)drawRect:(NSRect)rect
{
    [mBackgroundColor set];
    NSRectFill(rect);
}

@end
