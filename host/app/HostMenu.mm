#import "HostMenu.h"

#include <initializer_list>

namespace host {

namespace {

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
    addMenu(bar, makeMenu(program, {{@"Quit", @selector(terminate:), @"q"}}));
    addMenu(bar, makeMenu(@"File", {
                                       {@"Open…", @selector(openDocument:), @"o"},
                                       {@"Close", @selector(performClose:), @"w"},
                                   }));
    addMenu(bar, makeMenu(@"Edit", {
                                       {@"Undo", @selector(undo:), @"z"},
                                       {nil, nullptr, nil},
                                       {@"Cut", @selector(cut:), @"x"},
                                       {@"Copy", @selector(copy:), @"c"},
                                       {@"Paste", @selector(paste:), @"v"},
                                       {nil, nullptr, nil},
                                       {@"Select All", @selector(selectAll:), @"a"},
                                   }));
    [NSApp setMainMenu:bar];
}

} // namespace host
