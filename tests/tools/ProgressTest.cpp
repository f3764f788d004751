#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "tools/Progress.h"

namespace {

class Recorder : public IProgressSink {
public:
    bool OnProgress(const CXTString<wchar_t>& text, double fraction) override
    {
        texts.push_back(text);
        fractions.push_back(fraction);
        return fractions.size() < cancelAt;
    }
    std::vector<CXTString<wchar_t>> texts;
    std::vector<double> fractions;
    size_t cancelAt = ~0u;
};

}

TEST(Progress, TellsNoMoreThanAThousandTimes)
{
    Recorder sink;
    const CProgressScope scope(&sink);
    CProgress progress(L"work", 1000000);
    for (int i = 0; i < 1000000; i++)
        ASSERT_TRUE(progress.Step());
    EXPECT_EQ(sink.fractions.size(), 1001u);    // the beginning, and every thousandth
    EXPECT_DOUBLE_EQ(sink.fractions.back(), 1.0);
    for (size_t i = 1; i < sink.fractions.size(); i++)
        ASSERT_GT(sink.fractions[i], sink.fractions[i - 1]);
}

TEST(Progress, InnerWorkFillsTheStepOfTheOuter)
{
    Recorder sink;
    const CProgressScope scope(&sink);
    CProgress outer(L"outer", 4);
    outer.SetPos(2);
    {
        CProgress inner(L"inner", 10);
        inner.SetPos(5);
        EXPECT_DOUBLE_EQ(sink.fractions.back(), 0.625);
        inner.SetPos(99);    // beyond its range
        EXPECT_DOUBLE_EQ(sink.fractions.back(), 0.75);
        CProgress innermost(L"innermost", 1000000);    // too fine to be told
        const size_t told = sink.fractions.size();
        innermost.SetPos(1000);
        EXPECT_EQ(sink.fractions.size(), told);
    }
    outer.SetPos(3);
    EXPECT_DOUBLE_EQ(sink.fractions.back(), 0.75);
    EXPECT_EQ(sink.texts.back(), CXTString<wchar_t>(L"outer"));
}

TEST(Progress, CancelReachesEveryLevelAndStays)
{
    Recorder sink;
    sink.cancelAt = 3;
    const CProgressScope scope(&sink);
    CProgress outer(L"outer", 2);
    {
        CProgress inner(L"inner", 100);
        EXPECT_TRUE(inner.Step());
        EXPECT_FALSE(inner.Step());
    }
    EXPECT_TRUE(outer.IsCancelled());
    EXPECT_FALSE(outer.SetPos(0));    // also without a word to the sink
    CProgress next(L"next", 5);
    EXPECT_FALSE(next.Step());
    EXPECT_EQ(sink.fractions.size(), 3u);    // nobody is asked again
}

TEST(Progress, BelongsToItsThread)
{
    Recorder sink;
    const CProgressScope scope(&sink);
    std::thread([] {
        EXPECT_EQ(CProgressScope::GetCurrentSink(), nullptr);
        CProgress progress(L"elsewhere", 3);
        EXPECT_TRUE(progress.Step(3));
        EXPECT_FALSE(progress.IsCancelled());
    }).join();
    EXPECT_TRUE(sink.fractions.empty());
    {
        const CProgressScope none(nullptr);
        EXPECT_EQ(CProgressScope::GetCurrentSink(), nullptr);
    }
    EXPECT_EQ(CProgressScope::GetCurrentSink(), &sink);
}
