#include <CoreFoundation/CoreFoundation.h>

#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace {

NSString* _object(CFStringRef text)
{
    return reinterpret_cast<NSString*>(const_cast<__CFString*>(text));
}

// A bundle folder with two tables, removed at the end.
class CFBundleTest : public testing::Test {
protected:
    CFBundleTest()
        : folder(std::filesystem::temp_directory_path() /
                 ("CFBundleTest" + std::to_string(std::random_device()()) + ".bundle")),
          identifier("test.bundle." + std::to_string(std::random_device()()))
    {
        pool = [[NSAutoreleasePool alloc] init];
        const auto tables = folder / "Resources" / "English.lproj";
        std::filesystem::create_directories(tables);
        std::ofstream(folder / "Resources" / "Info-gnustep.plist")
            << "{ CFBundleIdentifier = \"" << identifier << "\"; }\n";
        std::ofstream(tables / "Localizable.strings") << "\"key\" = \"text\";\n";
        std::ofstream(tables / "Other.strings") << "\"key\" = \"other text\";\n";
    }
    ~CFBundleTest() override
    {
        [pool drain];
        std::filesystem::remove_all(folder);
    }

    CFBundleRef find() const
    {
        return CFBundleGetBundleWithIdentifier(
            reinterpret_cast<CFStringRef>([NSString stringWithUTF8String:identifier.c_str()]));
    }

    CFBundleRef open() const
    {
        return reinterpret_cast<CFBundleRef>(
            [NSBundle bundleWithPath:[NSString stringWithUTF8String:folder.c_str()]]);
    }

    static std::string lookUp(CFBundleRef bundle, CFStringRef key, CFStringRef value,
                              CFStringRef table)
    {
        const CFStringRef text = CFBundleCopyLocalizedString(bundle, key, value, table);
        const std::string result = [_object(text) UTF8String];
        CFRelease(text);
        return result;
    }

    NSAutoreleasePool* pool = nil;
    const std::filesystem::path folder;
    const std::string identifier;
};

TEST_F(CFBundleTest, IsFoundOnceABundleObjectExists)
{
    EXPECT_EQ(find(), nullptr);
    const CFBundleRef opened = open();
    ASSERT_NE(opened, nullptr);
    EXPECT_EQ(find(), opened);
}

TEST_F(CFBundleTest, TextComesFromTheTableOrTheDefaultOrTheKey)
{
    const CFBundleRef bundle = open();
    struct {
        const char* name;
        CFStringRef key, value, table;
        const char* expected;
    } const rows[] = {
        {"table named", CFSTR("key"), CFSTR("default"), CFSTR("Localizable"), "text"},
        {"null table", CFSTR("key"), CFSTR("default"), nullptr, "text"},
        {"empty table", CFSTR("key"), CFSTR("default"), CFSTR(""), "text"},
        {"other table", CFSTR("key"), CFSTR("default"), CFSTR("Other"), "other text"},
        {"missing table", CFSTR("key"), CFSTR("default"), CFSTR("None"), "default"},
        {"missing key", CFSTR("no"), CFSTR("default"), CFSTR("Localizable"), "default"},
        {"missing key, null default", CFSTR("no"), nullptr, nullptr, "no"},
        {"missing key, empty default", CFSTR("no"), CFSTR(""), nullptr, "no"},
        {"null key", nullptr, CFSTR("default"), nullptr, "default"},
        {"null key and default", nullptr, nullptr, nullptr, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(lookUp(bundle, row.key, row.value, row.table), row.expected);
    }
}

TEST_F(CFBundleTest, LocalizedStringBelongsToTheCaller)
{
    const CFBundleRef bundle = open();
    NSAutoreleasePool* const inner = [[NSAutoreleasePool alloc] init];
    const CFStringRef text = CFBundleCopyLocalizedString(bundle, CFSTR("key"), nullptr, nullptr);
    [inner drain];
    EXPECT_TRUE([_object(text) isEqualToString:@"text"]);
    CFRelease(text);
}

} // namespace
