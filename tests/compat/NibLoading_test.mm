#import "NibLoading.h"

#include "GuiTest.h"
#include "NewObjects.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <objc/runtime.h>

namespace {

NSXMLDocument* newDocument(NSData* description)
{
    return [[NSXMLDocument alloc] initWithData:description options:0 error:nullptr];
}

BOOL hasRoot(NSXMLDocument* document, NSString* path)
{
    return [[document nodesForXPath:path error:nullptr] count] != 0;
}

} // namespace

/// Keeps a document at each question.
@interface FormatCheckThatKeeps : NSObject
+ (BOOL)checkXib5:(NSData*)description;
@end

@implementation FormatCheckThatKeeps
+ (BOOL)checkXib5:(NSData*)description
{
    return hasRoot(newDocument(description), @"/document"); // NOLINT: keeping it is the point
}
@end

/// Keeps none. It asks another question than GNUstep does, so that an answer tells who gave it.
@interface FormatCheckThatReleases : NSObject
+ (BOOL)checkXib5:(NSData*)description;
@end

@implementation FormatCheckThatReleases
+ (BOOL)checkXib5:(NSData*)description
{
    return hasRoot([newDocument(description) autorelease], @"/another");
}
@end

/// Answers something else under the same name.
@interface FormatCheckThatGivesAText : NSObject
+ (NSString*)checkXib5:(NSData*)description;
@end

@implementation FormatCheckThatGivesAText
+ (NSString*)checkXib5:(NSData*)description
{
    newDocument(description); // NOLINT: keeping it is the point
    return @"another";
}
@end

/// Retains two texts and lets go of none.
@interface TextKeeper : NSObject {
@public
    NSString* className;
    NSString* extension;
}
@end

@implementation TextKeeper

- (void)setClassName:(NSString*)name
{
    ASSIGN(className, name);
}

- (void)setExtension:(NSString*)text
{
    ASSIGN(extension, text);
}

@end

/// Has something of its own to do in the end.
@interface TextKeeperWithAnEnd : TextKeeper {
@public
    int* ends;
}
@end

@implementation TextKeeperWithAnEnd

- (void)dealloc
{
    ++*ends;
    [super dealloc];
}

@end

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

NSData* data(const std::string& text)
{
    return [NSData dataWithBytes:text.data() length:text.size()];
}

IMP checkOf(Class loader)
{
    return method_getImplementation(class_getClassMethod(loader, @selector(checkXib5:)));
}

bool isXib5(Class loader, const std::string& description)
{
    const auto check = reinterpret_cast<BOOL (*)(Class, SEL, NSData*)>(checkOf(loader));
    return check(loader, @selector(checkXib5:), data(description)) != NO;
}

class NibLoading : public testing::Test {
protected:
    void SetUp() override
    {
        REQUIRE_DISPLAY();
        m_pool = [[NSAutoreleasePool alloc] init];
    }
    void TearDown() override { [m_pool drain]; }

    /// Objects that `call` leaves behind at its fifth to fourteenth time. The ones before fill
    /// caches, and the first lets GNUstep's format check be examined.
    template <typename Call>
    static std::map<std::string, int> keptBy(Call call)
    {
        const auto callInPool = [&call](int times) {
            for (int i = 0; i < times; ++i) {
                @autoreleasepool {
                    call();
                }
            }
        };
        callInPool(4);
        NewObjects objects;
        callInPool(10);
        return objects.take();
    }

private:
    NSAutoreleasePool* m_pool = nil;
};

TEST_F(NibLoading, LoadingAnInterfaceDescriptionKeepsNothing)
{
    const TemporaryFolder folder;
    const std::string path = folder / "Panel.xib";
    std::ofstream(path) << R"(<?xml version="1.0" encoding="UTF-8"?>
<document type="com.apple.InterfaceBuilder3.Cocoa.XIB" version="3.0" toolsVersion="7706">
    <objects>
        <customObject id="-2" userLabel="File's Owner" customClass="NSObject"/>
        <customObject id="-1" userLabel="First Responder" customClass="FirstResponder"/>
        <customObject id="-3" userLabel="Application" customClass="NSObject"/>
        <customView id="1" customClass="NSBox">
            <rect key="frame" x="0.0" y="0.0" width="240" height="60"/>
        </customView>
    </objects>
</document>
)";
    EXPECT_THAT(keptBy([&path] {
                    NSMutableArray* const topLevel = [NSMutableArray array];
                    NSDictionary* const names = @{
                        NSNibOwner : [[[NSObject alloc] init] autorelease],
                        NSNibTopLevelObjects : topLevel
                    };
                    ASSERT_TRUE([NSBundle loadNibFile:[NSString stringWithUTF8String:path.c_str()]
                                    externalNameTable:names
                                             withZone:nullptr]);
                    int boxes = 0;
                    for (id object in topLevel) {
                        if ([object isKindOfClass:[NSBox class]]) {
                            ++boxes;
                            [object release]; // top-level objects come with a reference to give up
                        }
                    }
                    EXPECT_EQ(boxes, 1);
                }),
                IsEmpty());
}

// --- which format a description has --------------------------------------------------------------

TEST_F(NibLoading, TheFormatsAreToldApart)
{
    const struct {
        const char* description;
        bool isXib5;
    } kRows[] = {
        {"<?xml version=\"1.0\"?><document type=\"x\"><objects/></document>", true},
        {"<archive type=\"x\"><data/></archive>", false},
        {"<archive><document/></archive>", false}, // only the root counts
        {"no description", false},
        {"", false},
    };
    for (Class loader : {NSClassFromString(@"GSXibKeyedUnarchiver"),
                         NSClassFromString(@"GSXib5KeyedUnarchiver")}) {
        ASSERT_NE(loader, nil);
        for (const auto& row : kRows) {
            SCOPED_TRACE(row.description);
            EXPECT_EQ(isXib5(loader, row.description), row.isXib5);
            EXPECT_THAT(keptBy([&] { isXib5(loader, row.description); }), IsEmpty());
        }
    }
}

TEST_F(NibLoading, AFormatCheckThatKeepsItsDocumentIsRepairedOnce)
{
    Class const loader = [FormatCheckThatKeeps class];
    const auto check = [loader] { EXPECT_TRUE(isXib5(loader, "<document/>")); };
    EXPECT_THAT(keptBy(check), Contains(Pair("NSXMLDocument", 10)));
    EXPECT_TRUE(AudioUnitCompatRepairFormatCheck(loader));
    EXPECT_THAT(keptBy(check), IsEmpty());
    EXPECT_FALSE(AudioUnitCompatRepairFormatCheck(loader));
}

TEST_F(NibLoading, EveryOtherFormatCheckIsLeftAlone)
{
    for (Class loader : {[FormatCheckThatReleases class], [FormatCheckThatGivesAText class]}) {
        const IMP before = checkOf(loader);
        EXPECT_FALSE(AudioUnitCompatRepairFormatCheck(loader));
        EXPECT_EQ(checkOf(loader), before);
    }
    EXPECT_TRUE(isXib5([FormatCheckThatReleases class], "<another/>"));
    EXPECT_FALSE(AudioUnitCompatRepairFormatCheck([NSObject class]));
    EXPECT_FALSE(AudioUnitCompatRepairFormatCheck(nullptr));
}

// --- the texts of a custom view ------------------------------------------------------------------

TEST_F(NibLoading, ACustomViewWithoutAnEndIsGivenOneOnce)
{
    int ends = 0;
    const auto makeAndRelease = [&ends] {
        for (Class kind : {[TextKeeper class], [TextKeeperWithAnEnd class]}) {
            TextKeeper* const keeper = [[kind alloc] init];
            [keeper setClassName:[NSMutableString stringWithString:@"NSBox"]];
            [keeper setExtension:[NSMutableString stringWithString:@"NSBox"]];
            if (kind == [TextKeeperWithAnEnd class]) {
                static_cast<TextKeeperWithAnEnd*>(keeper)->ends = &ends;
            }
            [keeper release];
        }
    };
    EXPECT_THAT(keptBy(makeAndRelease), ElementsAre(Pair("GSMutableString", 40)));
    EXPECT_TRUE(AudioUnitCompatRepairCustomView([TextKeeper class]));
    ends = 0;
    EXPECT_THAT(keptBy(makeAndRelease), IsEmpty());
    EXPECT_EQ(ends, 14);
    EXPECT_FALSE(AudioUnitCompatRepairCustomView([TextKeeper class]));
}

TEST_F(NibLoading, EveryOtherPlaceholderIsLeftAlone)
{
    EXPECT_FALSE(AudioUnitCompatRepairCustomView([TextKeeperWithAnEnd class]));
    EXPECT_FALSE(AudioUnitCompatRepairCustomView([NSView class]));
    EXPECT_FALSE(AudioUnitCompatRepairCustomView([FormatCheckThatKeeps class]));
    EXPECT_FALSE(AudioUnitCompatRepairCustomView(nullptr));
}

} // namespace
