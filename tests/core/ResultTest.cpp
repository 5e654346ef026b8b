#include <vek/core/Result.h>

#include <gtest/gtest.h>

#include <cstring>

using namespace Quorvex::Vek;

TEST(ResultNames, TableAndFallbacks)
{
    struct Case {
        int32_t code;
        const char* name;
    };
    const Case cases[] = {
        {0, "RESULT_OK"},
        {5, "RESULT_OK"},
        {-19000, "RESULT_ERROR"},
        {-19003, "RESULT_ARGUMENT_OUT_OF_RANGE"},
        {-19012, "RESULT_QUEUE_UNDERFLOW"},
        {-19013, "UNKNOWN"},
        {-19014, "RESULT_TIMEOUT"},
        {-19019, "RESULT_CUSTOM_ERROR_MESSAGE"},
        {-19104, "RESULT_EXPECTED_END_OF_STREAM"},
        {-19264, "UNKNOWN"},
        {-19271, "RESULT_BEYOND_INDEXER_PROGRESS"},
        {-19272, "RESULT_BEYOND_END_OF_SAMPLES"},
        {-19811, "UNKNOWN"},
        {-1, "UNKNOWN"},
    };
    for (const Case& c : cases)
        EXPECT_STREQ(GetResultName(c.code), c.name) << c.code;
}
