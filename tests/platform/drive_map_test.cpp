#include "platform/linux/drive_map.h"

#include "test_worlds.h"

namespace vardelin::platform {
namespace {

using test::errorOf;

const DriveMap& sampleMap()
{
    static const DriveMap map({{'c', "/"}, {'D', "/mnt/data/"}, {'E', "/mnt/data/inner"}});
    return map;
}

struct Row {
    std::string path;
    std::string native;
};

TEST(DriveMap, GoesToAndFro)
{
    const std::vector<Row> rows{
        {"C:\\", "/"},
        {"C:\\home\\x", "/home/x"},
        {"C:\\mnt\\dataset", "/mnt/dataset"},
        {"D:\\", "/mnt/data"},
        {"D:\\a b", "/mnt/data/a b"},
        {"D:\\inner2", "/mnt/data/inner2"},
        {"E:\\", "/mnt/data/inner"},
        {"E:\\x\\\xEF\x80\xBA", "/mnt/data/inner/x/:"},
        {"C:\\a\\..", "/a/.."},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(sampleMap().toNative(row.path), row.native);
        EXPECT_EQ(sampleMap().fromNative(row.native), row.path);
    }
}

TEST(DriveMap, CleansWhatMeansTheSame)
{
    EXPECT_EQ(sampleMap().toNative("c:"), "/");
    EXPECT_EQ(sampleMap().toNative("d:\\\\a\\.\\b\\"), "/mnt/data/a/b");
    EXPECT_EQ(sampleMap().fromNative("//mnt/./data//x/"), "D:\\x");
}

TEST(DriveMap, RaisesForWhatNoDriveReaches)
{
    for (const char* path : {"Q:\\x", "", "C", "x", "\\x", "C:x", "\\\\server\\share", "1:\\"})
        EXPECT_EQ(errorOf([&] { sampleMap().toNative(path); }), 76) << path;
    EXPECT_EQ(errorOf([&] { sampleMap().fromNative("x/y"); }), 76);
    EXPECT_EQ(errorOf([&] { DriveMap({{'D', "/mnt/d"}}).fromNative("/home"); }), 76);
    EXPECT_EQ(errorOf([&] { DriveMap({{'D', "/mnt/d"}}).fromNative("/mnt/dd"); }), 76);
}

TEST(DriveMap, RefusesNamesThatWouldLeadElsewhere)
{
    EXPECT_EQ(errorOf([&] { sampleMap().toNative("C:\\a/b"); }), 75);
    EXPECT_EQ(errorOf([&] { sampleMap().toNative(std::string("C:\\a\0b", 6)); }), 75);
    // Two mapped dots are no step upwards.
    EXPECT_EQ(errorOf([&] { sampleMap().toNative("C:\\\xEF\x80\xAE\xEF\x80\xAE\\b"); }), 75);
}

} // namespace
} // namespace vardelin::platform
