// sfm_fixture.h - a temporary directory, an assertion manager and a file
// manager whose event and assertion sites are recorded.
#ifndef SFM_FIXTURE_H
#define SFM_FIXTURE_H

#include <keel/SFM.h>
#include <keel/SFM_File.h>
#include <keel/SSM.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

typedef std::vector<int> Codes;
typedef std::vector<std::string> Texts;

inline std::string Str(const SYS_StringBase& s) { return s.GetString(); }

class SfmTest : public ::testing::Test {
protected:
    SSM ssm;
    SFM sfm;
    std::string dir;
    std::vector<int> codes;                          // event codes heard, in order
    std::vector<std::string> sites;                  // assertion sites, "file:line"
    std::function<void(int, SFM_EventData*)> answer; // a host handler, when set
    SCC_ObjectEventHook<SfmTest, SFM_EventData> hook;
    SCC_ObjectEventHook<SfmTest, int> assertHook;

    void SetUp() override {
        char name[] = "/tmp/keel-sfm-XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        dir = name;
        hook.SetObject(this), hook.SetMethod(&SfmTest::OnEvent), hook.Attach(&sfm.event);
        assertHook.SetObject(this), assertHook.SetMethod(&SfmTest::OnAssert);
        assertHook.Attach(&ssm.FailureEvent);
    }
    void TearDown() override { std::filesystem::remove_all(dir); }

    int OnEvent(int code, SFM_EventData* data) {
        codes.push_back(code);
        if (answer) answer(code, data);
        return 0;
    }
    int OnAssert(int, int* data) {
        auto* r = reinterpret_cast<SSM::AssertData*>(data);
        sites.push_back(std::string(r->File.GetString()) + ":" + std::to_string(r->Line));
        return 0;
    }

    std::string Path(const std::string& name) const { return dir + "/" + name; }
    std::vector<int> Heard() { return std::exchange(codes, {}); }
    std::vector<std::string> Asserted() { return std::exchange(sites, {}); }

    static std::string Slurp(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }
    static void Spill(const std::string& path, const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }
};

#endif // SFM_FIXTURE_H
