#import "CocoaViewLoader.h"

#import "HostTry.h"

#import <AudioUnit/AUCocoaUIView.h>

#include <vector>

namespace host {

namespace {

constexpr unsigned kInterfaceVersion = 0;

/// The CocoaUI property: one bundle URL, then the names of the view factories. The host owns all
/// of them.
class ViewInfo {
public:
    explicit ViewInfo(AudioUnit unit);
    ~ViewInfo();
    ViewInfo(const ViewInfo&) = delete;
    ViewInfo& operator=(const ViewInfo&) = delete;

    bool hasClass() const { return m_members.size() > 1; }
    NSURL* bundleLocation() const { return (NSURL*)m_members.at(0); }
    NSString* className() const { return (NSString*)m_members.at(1); }

private:
    std::vector<CFTypeRef> m_members;
};

ViewInfo::ViewInfo(AudioUnit unit)
{
    UInt32 size = 0;
    Boolean writable = false;
    if (AudioUnitGetPropertyInfo(unit, kAudioUnitProperty_CocoaUI, kAudioUnitScope_Global, 0, &size,
                                 &writable) != noErr ||
        size < sizeof(AudioUnitCocoaViewInfo)) {
        return;
    }
    const std::size_t classCount = (size - sizeof(CFURLRef)) / sizeof(CFStringRef);
    std::vector<CFTypeRef> members(1 + classCount, nullptr);
    size = static_cast<UInt32>(members.size() * sizeof(CFTypeRef));
    if (AudioUnitGetProperty(unit, kAudioUnitProperty_CocoaUI, kAudioUnitScope_Global, 0,
                             members.data(), &size) == noErr) {
        m_members = std::move(members);
    }
}

ViewInfo::~ViewInfo()
{
    for (CFTypeRef const member : m_members) {
        [(id)member release];
    }
}

CocoaView problem(NSString* format, ...) NS_FORMAT_FUNCTION(1, 2);

CocoaView problem(NSString* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    NSString* const text = [[NSString alloc] initWithFormat:format arguments:arguments];
    va_end(arguments);
    return {.problem = [text autorelease]};
}

bool isViewFactory(Class factory)
{
    // By name, since on GNUstep the runtime prepares a @protocol() expression only in a program
    // that has a class of its own with that protocol.
    Protocol* const protocol = NSProtocolFromString(@"AUCocoaUIBase");
    return protocol != nil && [factory conformsToProtocol:protocol] &&
           [factory instancesRespondToSelector:@selector(interfaceVersion)] &&
           [factory instancesRespondToSelector:@selector(uiViewForAudioUnit:withSize:)];
}

CocoaView makeView(Class factoryClass, AudioUnit unit, NSSize preferredSize)
{
    id<AUCocoaUIBase> const factory = [[[factoryClass alloc] init] autorelease];
    if (factory == nil) {
        return problem(@"The view factory “%@” could not be made.",
                       NSStringFromClass(factoryClass));
    }
    if ([factory interfaceVersion] != kInterfaceVersion) {
        return problem(@"The view factory “%@” follows an interface this host does not know.",
                       NSStringFromClass(factoryClass));
    }
    NSView* const view = [factory uiViewForAudioUnit:unit withSize:preferredSize];
    if (![view isKindOfClass:[NSView class]]) {
        return problem(@"The view factory “%@” gave no view.", NSStringFromClass(factoryClass));
    }
    return {.view = view, .name = [[[(NSObject*)factory description] copy] autorelease]};
}

CocoaView openStepByStep(AudioUnit unit, NSSize preferredSize)
{
    const ViewInfo info(unit);
    if (!info.hasClass()) {
        return problem(@"The effect offers no view of its own.");
    }
    NSBundle* const bundle = [NSBundle bundleWithPath:[info.bundleLocation() path]];
    if (bundle == nil) {
        return problem(@"There is no bundle at “%@”.", [info.bundleLocation() path]);
    }
    Class const factory = [bundle classNamed:info.className()];
    if (factory == nil) {
        return problem(@"The bundle “%@” has no class “%@”.",
                       [[bundle bundlePath] lastPathComponent], info.className());
    }
    if (!isViewFactory(factory)) {
        return problem(@"The class “%@” is no view factory.", info.className());
    }
    return makeView(factory, unit, preferredSize);
}

struct Request {
    AudioUnit unit;
    NSSize preferredSize;
    CocoaView result;
};

void serve(void* context)
{
    auto& request = *static_cast<Request*>(context);
    request.result = openStepByStep(request.unit, request.preferredSize);
}

} // namespace

CocoaView openCocoaView(AudioUnit unit, NSSize preferredSize)
{
    Request request{unit, preferredSize, {}};
    NSString* const exception = HostTry(serve, &request);
    return exception == nil ? request.result
                            : problem(@"The view could not be opened: %@.", exception);
}

} // namespace host
