#pragma once
// An update window's form in a temporary program folder, talking to a local
// HTTP server, with a scripted user.
#include "support/fake_prompter.h"
#include "support/local_http_server.h"
#include "support/temp_dir.h"
#include "update/update_form.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace quillon::test {

class UpdateFixture : public ::testing::Test {
protected:
    std::unique_ptr<UpdateForm> MakeForm(const std::filesystem::path& folder, std::string current = "3.1.1") {
        return std::make_unique<UpdateForm>(user, folder, server.Url(), std::move(current));
    }
    void ServeFiles(std::string version, std::string address) {
        server.Serve("/updates/quillon.txt", Body(std::move(version)));
        server.Serve("/updates/quillon2.txt", Body(std::move(address)));
    }
    // Clicks Check and waits until the window is idle again.
    void CheckAndWait() {
        form->Check();
        ASSERT_TRUE(WaitUntil([&] { return !form->Checking() && !form->busy; }));
    }
    void ExpectReady() const {
        EXPECT_TRUE(form->cmdCheckVisible && form->cmdCheckEnabled && form->cmdDownloadEnabled);
        EXPECT_FALSE(form->cmdDownloadVisible || form->busy);
    }

    TempDir dir;
    FakePrompter user;
    LocalHttpServer server;
    std::unique_ptr<UpdateForm> form = MakeForm(dir.path());
};

}  // namespace quillon::test
