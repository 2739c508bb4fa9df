#import "HelpWindow.h"

#import "HelpText.h"
#import "HostLook.h"

using namespace host;

namespace {

NSString* const kNotificationName = @"XeHelpNotification";
NSString* const kTopicKey = @"anchor";
const NSSize kWindowSize = {520, 620};
constexpr CGFloat kMargin = 20;
constexpr CGFloat kTermColumn = 150;

struct Setting {
    NSFont* font;
    NSColor* color;
    CGFloat before;
    CGFloat after;
};

Setting settingOf(HelpParagraph::Kind kind)
{
    switch (kind) {
    case HelpParagraph::Kind::Title:
        return {[NSFont boldSystemFontOfSize:20], look::text(), 0, 8};
    case HelpParagraph::Kind::Heading:
        return {[NSFont boldSystemFontOfSize:13], look::accent(), 0, 5};
    case HelpParagraph::Kind::Text:
    case HelpParagraph::Kind::Term:
        break;
    }
    return {[NSFont systemFontOfSize:12], look::text(), 0, 5};
}

NSParagraphStyle* styleOf(const HelpParagraph& paragraph, const Setting& setting)
{
    NSMutableParagraphStyle* const style = [[[NSMutableParagraphStyle alloc] init] autorelease];
    [style setParagraphSpacingBefore:setting.before];
    [style setParagraphSpacing:setting.after];
    if (paragraph.kind == HelpParagraph::Kind::Term) {
        NSTextTab* const tab = [[[NSTextTab alloc] initWithType:NSLeftTabStopType
                                                       location:kTermColumn] autorelease];
        [style setTabStops:@[ tab ]];
        [style setHeadIndent:kTermColumn];
    }
    return style;
}

NSAttributedString* setParagraph(const HelpParagraph& paragraph)
{
    const Setting setting = settingOf(paragraph.kind);
    const bool isTerm = paragraph.kind == HelpParagraph::Kind::Term;
    NSString* const term = [NSString stringWithUTF8String:paragraph.term];
    NSString* const text = [NSString stringWithUTF8String:paragraph.text];
    const bool isHeading = paragraph.kind == HelpParagraph::Kind::Heading;
    // An empty line, because the platform's typesetter may leave out the space before.
    NSString* const whole = [NSString
        stringWithFormat:@"%@%@%@%@\n", isHeading ? @"\n" : @"", term, isTerm ? @"\t" : @"", text];
    NSMutableAttributedString* const set = [[[NSMutableAttributedString alloc]
        initWithString:whole
            attributes:@{
                NSFontAttributeName : setting.font,
                NSForegroundColorAttributeName : setting.color,
                NSParagraphStyleAttributeName : styleOf(paragraph, setting),
            }] autorelease];
    if (isTerm) {
        [set addAttribute:NSFontAttributeName
                    value:[NSFont boldSystemFontOfSize:12]
                    range:NSMakeRange(0, [term length])];
    }
    return set;
}

NSAttributedString* setPage(int topic)
{
    NSMutableAttributedString* const page = [[[NSMutableAttributedString alloc] init] autorelease];
    for (const HelpParagraph& paragraph : helpPage(topic)) {
        [page appendAttributedString:setParagraph(paragraph)];
    }
    return page;
}

} // namespace

@implementation HelpWindow

- (id)init
{
    self = [super init];
    if (self != nil) {
        [[NSNotificationCenter defaultCenter] addObserver:self
                                                 selector:@selector(_helpWasAsked:)
                                                     name:kNotificationName
                                                   object:nil];
    }
    return self;
}

- (void)dealloc
{
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [m_window close];
    [m_window release];
    [super dealloc];
}

- (NSWindow*)window
{
    return m_window;
}

- (NSString*)text
{
    return [m_text string];
}

- (int)topic
{
    return m_topic;
}

- (void)_helpWasAsked:(NSNotification*)notification
{
    [self showTopic:[[[notification userInfo] objectForKey:kTopicKey] intValue]];
}

- (void)showTopic:(int)topic
{
    if (m_window == nil) {
        [self _makeWindow];
    }
    m_topic = topic;
    [[m_text textStorage] setAttributedString:setPage(topic)];
    [m_text scrollRangeToVisible:NSMakeRange(0, 0)];
    [m_window makeKeyAndOrderFront:nil];
}

- (void)_makeWindow
{
    const NSRect content = NSMakeRect(0, 0, kWindowSize.width, kWindowSize.height);
    m_window = [[NSWindow alloc]
        initWithContentRect:content
                  styleMask:NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask
                    backing:NSBackingStoreBuffered
                      defer:NO];
    [m_window setReleasedWhenClosed:NO];
    [m_window setTitle:@"Tarvel Help"];
    [m_window setBackgroundColor:look::panel()];
    [m_window center];

    NSScrollView* const scroll = [[[NSScrollView alloc] initWithFrame:content] autorelease];
    [scroll setHasVerticalScroller:YES];
    [scroll setBorderType:NSNoBorder];
    [scroll setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
    const NSSize size = [scroll contentSize];
    m_text =
        [[[NSTextView alloc] initWithFrame:NSMakeRect(0, 0, size.width, size.height)] autorelease];
    [m_text setEditable:NO];
    [m_text setBackgroundColor:look::panel()];
    [m_text setTextContainerInset:NSMakeSize(kMargin, kMargin)];
    [m_text setHorizontallyResizable:NO];
    [m_text setVerticallyResizable:YES];
    [m_text setMaxSize:NSMakeSize(1e7, 1e7)];
    [m_text setAutoresizingMask:NSViewWidthSizable];
    [[m_text textContainer] setWidthTracksTextView:YES];
    [scroll setDocumentView:m_text];
    [m_window setContentView:scroll];
}

@end
