#include "platform/linux/linux_desktop_types.h"
#include "platform/memory/memory_desktop_types.h"
#include "platform/memory/memory_processes.h"
#include "test_worlds.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

// What every desktop does, whatever stands behind it.
namespace vardelin::platform {
namespace {

class DesktopWorld {
public:
    DesktopWorld() = default;
    DesktopWorld(const DesktopWorld&) = delete;
    DesktopWorld& operator=(const DesktopWorld&) = delete;
    virtual ~DesktopWorld() = default;

    virtual DesktopTypes& desktop() = 0;
    virtual void forget() = 0; // what it was told
    virtual void setWritable(bool writes) = 0;
};

class MemoryDesktopWorld final : public DesktopWorld {
public:
    DesktopTypes& desktop() override { return m_desktop; }
    void forget() override { m_desktop.known = false; }
    void setWritable(bool writes) override
    {
        m_desktop.script().reset();
        if (!writes)
            m_desktop.script().failCallsNamed("desktop.registerProgram",
                                              base::error_number::kDeviceIo);
    }

private:
    MemoryDesktopTypes m_desktop;
};

class LinuxDesktopWorld final : public DesktopWorld {
public:
    DesktopTypes& desktop() override { return m_desktop; }
    void forget() override { std::filesystem::remove_all(m_share); }
    // By a file in the way, which holds root off, too.
    void setWritable(bool writes) override
    {
        std::filesystem::remove_all(m_share);
        if (!writes)
            std::ofstream(m_share) << "no folder";
    }

private:
    test::TemporaryFolder m_folder;
    std::string m_share = m_folder.path() + "/share";
    MemoryProcesses m_processes;
    LinuxDesktopTypes m_desktop{{m_folder.path(), m_folder.path() + "/config", {m_share}},
                                "/opt/vardelin/vardelin",
                                m_processes};
};

struct Implementation {
    const char* name;
    std::unique_ptr<DesktopWorld> (*make)();
};

template <typename Made>
std::unique_ptr<DesktopWorld> make()
{
    return std::make_unique<Made>();
}

class DesktopTypesConformance : public testing::TestWithParam<Implementation> {
protected:
    std::unique_ptr<DesktopWorld> world = GetParam().make();
    DesktopTypes& desktop = world->desktop();
};

TEST_P(DesktopTypesConformance, TellsTheDesktopOnce)
{
    EXPECT_TRUE(desktop.registerProgram());
    EXPECT_FALSE(desktop.registerProgram());
}

TEST_P(DesktopTypesConformance, TellsItAgainWhereItForgot)
{
    desktop.registerProgram();
    world->forget();
    EXPECT_TRUE(desktop.registerProgram());
    EXPECT_FALSE(desktop.registerProgram());
}

TEST_P(DesktopTypesConformance, RaisesWhereItCannotBeToldAndTellsItLater)
{
    world->setWritable(false);
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(test::errorOf([&] { desktop.registerProgram(); }), base::error_number::kDeviceIo);
    world->setWritable(true);
    EXPECT_TRUE(desktop.registerProgram());
}

INSTANTIATE_TEST_SUITE_P(All, DesktopTypesConformance,
                         testing::Values(Implementation{"Memory", &make<MemoryDesktopWorld>},
                                         Implementation{"Linux", &make<LinuxDesktopWorld>}),
                         [](const auto& made) { return std::string(made.param.name); });

} // namespace
} // namespace vardelin::platform
