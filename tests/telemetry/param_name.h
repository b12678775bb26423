// Names table-driven test cases after their `name` member.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace dksml::test {

struct ParamName {
    template <typename T>
    std::string operator()(const ::testing::TestParamInfo<T>& testCase) const {
        return testCase.param.name;
    }
};

}  // namespace dksml::test
