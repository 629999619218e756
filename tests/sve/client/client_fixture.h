// The client, started in a scripted host.
#pragma once

#include <gtest/gtest.h>

#include "tests/sve/client/scripted_host.h"

class ClientTest : public testing::Test {
 protected:
  void SetUp() override { host_script = scripted_host{}; }

  static void start(std::vector<const char*> arguments = {}) {
    arguments.insert(arguments.begin(), "libsve_client.so");
    dr_client_main(0, static_cast<int>(arguments.size()), arguments.data());
  }

  // What event_exit prints.
  static std::string exit_report() {
    testing::internal::CaptureStderr();
    host_script.exit_event();
    return testing::internal::GetCapturedStderr();
  }

  // The message of a failed assertion, as a regular expression.
  static std::string assertion_message(const std::string& condition) {
    return "ASSERT FAILURE: sve/client/sve_client:[1-9][0-9]*: " + condition + " \\(\\)\n$";
  }
};
