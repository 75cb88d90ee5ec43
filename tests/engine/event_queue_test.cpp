#include "runs/engine/event_queue.h"

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vardelin::engine {
namespace {

// A window lives by these calls, and asks whether to go on behind each.
TEST(EventQueue, TellsTheFileInWorkAgainWhileNothingComes)
{
    EventQueue events;
    std::atomic<int> told = 0;
    std::vector<std::string> files;
    std::thread worker([&] {
        events.fileBegins("C:\\a");
        events.fileBegins("C:\\b");
        constexpr int kBothAndOneAgain = 3;
        while (told < kBothAndOneAgain) // the disk does not answer
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        events.workerEnds();
    });
    events.pump(
        1,
        [&](const std::string& file) {
            files.push_back(file);
            ++told;
        },
        [](double) {});
    worker.join();
    ASSERT_GE(files.size(), 3U);
    EXPECT_EQ(files[0], "C:\\a");
    EXPECT_THAT(std::vector<std::string>(files.begin() + 1, files.end()), testing::Each("C:\\b"));
}

TEST(EventQueue, HasNothingToTellAgainBeforeTheFirstFile)
{
    EventQueue events;
    double units = 0;
    std::thread worker([&] {
        constexpr std::chrono::milliseconds kLongerThanASilence(300);
        std::this_thread::sleep_for(kLongerThanASilence);
        events.advance(2);
        events.workerEnds();
    });
    std::vector<std::string> files;
    events.pump(
        1, [&](const std::string& file) { files.push_back(file); },
        [&](double some) { units += some; });
    worker.join();
    EXPECT_THAT(files, testing::IsEmpty());
    EXPECT_EQ(units, 2);
}

} // namespace
} // namespace vardelin::engine
