#import "HostMenu.h"

#import "host/effect/AudioFile.h"

#include <initializer_list>

namespace host {

namespace {

NSString* const kRecentTitle = @"Open Recent";

/// A path as text without quotes.
std::string unquotedPath(const std::string& path)
{
    const std::string quoted = quotedPath(path);
    return quoted.substr(1, quoted.size() - 2);
}

struct ItemRow {
    NSString* title; // nil: a separator
    SEL action;
    NSString* key; // with Command
};

NSMenu* makeMenu(NSString* title, std::initializer_list<ItemRow> rows)
{
    NSMenu* const menu = [[[NSMenu alloc] initWithTitle:title] autorelease];
    for (const ItemRow& row : rows) {
        if (row.title == nil) {
            [menu addItem:[NSMenuItem separatorItem]];
        } else {
            [menu addItemWithTitle:row.title action:row.action keyEquivalent:row.key];
        }
    }
    return menu;
}

void addMenu(NSMenu* bar, NSMenu* menu)
{
    id<NSMenuItem> const item = [bar addItemWithTitle:[menu title]
                                               action:nullptr
                                        keyEquivalent:@""];
    [bar setSubmenu:menu forItem:item];
}

} // namespace

void installMainMenu()
{
    NSString* const program = [[NSProcessInfo processInfo] processName];
    NSMenu* const bar = [[[NSMenu alloc] initWithTitle:program] autorelease];
    // Menus inside of windows always begin with one of the program's name.
    addMenu(bar, makeMenu(program, {
                                       {@"Tempo…", @selector(editMusic:), @"t"},
                                       {nil, nullptr, nil},
                                       {@"Quit", @selector(terminate:), @"q"},
                                   }));
    addMenu(bar, makeMenu(@"File", {
                                       {@"Open…", @selector(openDocument:), @"o"},
                                       {kRecentTitle, nullptr, @""},
                                       {nil, nullptr, nil},
                                       {@"Export…", @selector(exportDocument:), @"e"},
                                       {nil, nullptr, nil},
                                       {@"Close", @selector(performClose:), @"w"},
                                   }));
    addMenu(bar, makeMenu(@"Edit", {
                                       {@"Undo", @selector(undoEdit:), @"z"},
                                       {@"Redo", @selector(redoEdit:), @"Z"},
                                       {nil, nullptr, nil},
                                       {@"Cut", @selector(cut:), @"x"},
                                       {@"Copy", @selector(copy:), @"c"},
                                       {@"Paste", @selector(paste:), @"v"},
                                       {nil, nullptr, nil},
                                       {@"Select All", @selector(selectAll:), @"a"},
                                   }));
    addMenu(bar, makeMenu(@"Help", {
                                       {@"Tarvel Help", @selector(showHelp:), @"?"},
                                       {@"The Editor", @selector(showEditorHelp:), @""},
                                   }));
    [NSApp setMainMenu:bar];
    showRecentFiles({});
}

void showRecentFiles(const std::vector<std::string>& paths)
{
    NSMenu* const menu = [[[NSMenu alloc] initWithTitle:kRecentTitle] autorelease];
    for (std::size_t i = 0; i < paths.size(); ++i) {
        NSString* const title = [NSString stringWithUTF8String:unquotedPath(paths[i]).c_str()];
        id<NSMenuItem> const item = [menu addItemWithTitle:title
                                                    action:@selector(openRecentDocument:)
                                             keyEquivalent:@""];
        [item setTag:static_cast<NSInteger>(i)];
    }
    if (!paths.empty()) {
        [menu addItem:[NSMenuItem separatorItem]];
        [menu addItemWithTitle:@"Clear List"
                        action:@selector(clearRecentDocuments:)
                 keyEquivalent:@""];
    }
    NSMenu* const file = [[[NSApp mainMenu] itemWithTitle:@"File"] submenu];
    id<NSMenuItem> const item = [file itemWithTitle:kRecentTitle];
    [file setSubmenu:menu forItem:item];
    [item setEnabled:!paths.empty()];
}

} // namespace host
