#include "XeHelp.h"

#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

struct HelpRequest {
    std::string name;
    bool hasObject = false;
    std::size_t infoCount = 0;
    int anchor = 0;
    void* parent = nullptr;
    std::thread::id thread;
};

/// Observes the whole notification centre and keeps what arrives under the name of the help.
@interface HelpObserver : NSObject {
    std::vector<HelpRequest> m_requests;
}
- (const std::vector<HelpRequest>&)requests;
@end

@implementation HelpObserver

- (id)init
{
    self = [super init];
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(helpWanted:)
                                                 name:@"XeHelpNotification"
                                               object:nil];
    return self;
}

- (void)dealloc
{
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    [super dealloc];
}

- (void)helpWanted:(NSNotification*)notification
{
    NSDictionary* const info = [notification userInfo];
    HelpRequest request;
    request.name = [[notification name] UTF8String];
    request.hasObject = [notification object] != nil;
    request.infoCount = [info count];
    request.anchor = [[info objectForKey:@"anchor"] intValue];
    request.parent = [[info objectForKey:@"parent"] pointerValue];
    request.thread = std::this_thread::get_id();
    m_requests.push_back(request);
}

- (const std::vector<HelpRequest>&)requests
{
    return m_requests;
}

@end

namespace {

class Help : public testing::Test {
protected:
    Help() : m_pool([[NSAutoreleasePool alloc] init]), m_observer([[HelpObserver alloc] init]) {}

    ~Help() override
    {
        [m_observer release];
        [m_pool drain];
    }

    const std::vector<HelpRequest>& requests() const { return [m_observer requests]; }

private:
    NSAutoreleasePool* m_pool;
    HelpObserver* m_observer;
};

TEST_F(Help, RequestCarriesTopicAndContextAndNothingElse)
{
    int context = 0;
    XeHelp::Goto(11, &context);
    ASSERT_EQ(requests().size(), 1u) << "delivered before the call returns";
    const HelpRequest& request = requests().front();
    EXPECT_EQ(request.name, "XeHelpNotification");
    EXPECT_FALSE(request.hasObject);
    EXPECT_EQ(request.infoCount, 2u);
    EXPECT_EQ(request.anchor, 11);
    EXPECT_EQ(request.parent, &context);
}

TEST_F(Help, TopicKeepsItsSignAndItsThirtyTwoBits)
{
    for (const int topic : {0, 1, -2, 2147483647, -2147483647 - 1}) {
        XeHelp::Goto(topic, nullptr);
        EXPECT_EQ(requests().back().anchor, topic);
        EXPECT_EQ(requests().back().parent, nullptr);
    }
}

TEST_F(Help, HomeIsTopicMinusOneWithoutContext)
{
    XeHelp::GotoHome();
    ASSERT_EQ(requests().size(), 1u);
    EXPECT_EQ(requests().front().infoCount, 2u);
    EXPECT_EQ(requests().front().anchor, -1);
    EXPECT_EQ(requests().front().parent, nullptr);
}

TEST_F(Help, ObserversRunOnTheAskingThread)
{
    std::thread::id worker;
    std::thread([&worker] {
        worker = std::this_thread::get_id();
        XeHelp::Goto(3, nullptr);
    }).join();
    ASSERT_EQ(requests().size(), 1u);
    EXPECT_EQ(requests().front().thread, worker);
}

TEST(HelpWithoutObserver, IsHarmless)
{
    XeHelp::Goto(11, nullptr);
    XeHelp::GotoHome();
}

} // namespace
