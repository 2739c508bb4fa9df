#import "ControlRecorder.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

@interface RecordingProxy : NSProxy {
@public
    id control; // not owned
    std::string name;
    std::vector<std::string>* lines;
}
@end

namespace {

std::string number(double value)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.10g", value);
    return text;
}

std::string objectText(id object)
{
    if (object == nil) {
        return "nil";
    }
    if ([object isKindOfClass:[NSNumber class]]) {
        return number([object doubleValue]);
    }
    if ([object isKindOfClass:[NSString class]]) {
        return [object UTF8String];
    }
    return [NSStringFromClass(object_getClass(object)) UTF8String];
}

template <typename Value>
Value argument(NSInvocation* invocation, NSUInteger index)
{
    Value value{};
    [invocation getArgument:&value atIndex:static_cast<NSInteger>(index)];
    return value;
}

std::string argumentText(NSInvocation* invocation, NSUInteger index)
{
    switch (*[[invocation methodSignature] getArgumentTypeAtIndex:index]) {
    case '@':
        return objectText(argument<id>(invocation, index));
    case 'd':
        return number(argument<double>(invocation, index));
    case 'f':
        return number(argument<float>(invocation, index));
    case 'I':
        return number(argument<unsigned>(invocation, index));
    case 'i':
        return number(argument<int>(invocation, index));
    case 'C':
        return number(argument<unsigned char>(invocation, index));
    case 'c':
        return number(argument<signed char>(invocation, index));
    default:
        return std::to_string(argument<long>(invocation, index));
    }
}

std::string lineOf(NSInvocation* invocation)
{
    std::string line = [NSStringFromSelector([invocation selector]) UTF8String];
    const NSUInteger count = [[invocation methodSignature] numberOfArguments];
    for (NSUInteger index = 2; index < count; ++index) {
        line += " " + argumentText(invocation, index);
    }
    return line;
}

void setOutlet(id view, const std::string& name, id control)
{
    const Ivar variable = class_getInstanceVariable(object_getClass(view), name.c_str());
    object_setIvar(view, variable, control);
}

} // namespace

@implementation RecordingProxy

- (NSMethodSignature*)methodSignatureForSelector:(SEL)selector
{
    return [control methodSignatureForSelector:selector];
}

- (void)forwardInvocation:(NSInvocation*)invocation
{
    lines->push_back(name + " " + lineOf(invocation));
    [invocation invokeWithTarget:control];
}

@end

namespace editor_test {

ControlRecorder::ControlRecorder(OpenEditor& editor, std::vector<std::string> outlets)
    : m_editor(editor)
{
    for (const std::string& outlet : outlets) {
        RecordingProxy* const proxy = [RecordingProxy alloc];
        proxy->control = editor.outlet(outlet.c_str());
        proxy->name = outlet;
        proxy->lines = &m_lines;
        m_proxies[outlet] = proxy;
        setOutlet(editor.view(), outlet, proxy);
    }
}

ControlRecorder::~ControlRecorder()
{
    for (const auto& [outlet, proxy] : m_proxies) {
        setOutlet(m_editor.view(), outlet, ((RecordingProxy*)proxy)->control);
        [proxy release];
    }
}

std::vector<std::string> ControlRecorder::take() { return std::exchange(m_lines, {}); }

std::vector<std::string> ControlRecorder::take(const std::vector<std::string>& words)
{
    std::vector<std::string> lines = take();
    std::erase_if(lines, [&words](const std::string& line) {
        return std::none_of(words.begin(), words.end(), [&line](const std::string& word) {
            return line.find(word) != std::string::npos;
        });
    });
    return lines;
}

} // namespace editor_test
