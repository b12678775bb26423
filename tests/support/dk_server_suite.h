// One "server" virtual host and one discovery for a whole suite, for suites
// whose tests only read the host or expect the earlier tests' writes.
#pragma once

#include <string_view>

#include <gtest/gtest.h>

#include "dksml.h"
#include "vhost/dk_virtual_host.h"

namespace dksml::test {

class ServerSuite : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        host = new vhost::ScopedHost(std::string_view("server"));
        ASSERT_EQ(dkSmlInitWithFlags(1), DK_SML_SUCCESS);
    }
    static void TearDownTestSuite() {
        delete host;
        host = nullptr;
    }

    static inline vhost::ScopedHost* host = nullptr;
};

}  // namespace dksml::test
