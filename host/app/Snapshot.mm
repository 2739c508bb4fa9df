#import "Snapshot.h"

#import "host/effect/AudioFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace host {

namespace {

/// The view that holds the content view and, where menus are inside of windows, the menu.
NSView* frameView(NSWindow* window)
{
    NSView* const content = [window contentView];
    return [content superview] != nil ? [content superview] : content;
}

NSData* pngOf(NSWindow* window)
{
    NSView* const view = frameView(window);
    [window display];
    [view lockFocus];
    NSBitmapImageRep* const image =
        [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
    [view unlockFocus];
    return [image representationUsingType:NSPNGFileType properties:@{}];
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

bool writeFile(const std::string& path, NSData* data)
{
    std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path.c_str(), "wbe"));
    return file && std::fwrite([data bytes], 1, [data length], file.get()) == [data length] &&
           std::fclose(file.release()) == 0;
}

} // namespace

std::string writeSnapshot(NSWindow* window, const std::string& path)
{
    NSData* const png = pngOf(window);
    if (png == nil) {
        return "The window could not be turned into a picture.";
    }
    if (!writeFile(path, png)) {
        return quotedPath(path) + " cannot be written: " + std::strerror(errno) + ".";
    }
    return "";
}

} // namespace host
