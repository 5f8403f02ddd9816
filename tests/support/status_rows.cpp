#include "status_rows.hpp"

#include <cstdio>
#include <map>
#include <set>

namespace fixture {

namespace {

std::map<std::string, std::set<std::int32_t>> &covered() {
    static std::map<std::string, std::set<std::int32_t>> all;
    return all;
}

class StatusTable : public testing::Environment {
public:
    explicit StatusTable(std::vector<StatusRow> rows) : rows_(std::move(rows)) {}

    void TearDown() override {
        const bool whole = testing::GTEST_FLAG(filter) == "*" && testing::GTEST_FLAG(repeat) == 1;
        int missing = 0;
        int total = 0;
        std::printf("\nStatuses seen, by export ([n] = not covered)\n");
        for (const StatusRow &row : rows_) {
            std::printf("  %-28s", row.exportName.c_str());
            for (const std::int32_t status : row.statuses) {
                const bool seen = covered()[row.exportName].count(status) != 0;
                std::printf(seen ? " %d" : " [%d]", status);
                ++total;
                if (seen)
                    continue;
                ++missing;
                if (whole)
                    ADD_FAILURE() << row.exportName << " never gave " << status;
            }
            std::printf("\n");
        }
        std::printf("%d of %d rows covered\n\n", total - missing, total);
    }

private:
    std::vector<StatusRow> rows_;
};

} // namespace

testing::AssertionResult gives(const char *exportName, std::int32_t expected, nlsStatus actual) {
    if (static_cast<std::int32_t>(actual) != expected)
        return testing::AssertionFailure()
               << exportName << " gave " << static_cast<std::int32_t>(actual) << " instead of " << expected;
    covered()[exportName].insert(expected);
    return testing::AssertionSuccess();
}

void watchStatusRows(std::vector<StatusRow> rows) {
    testing::AddGlobalTestEnvironment(new StatusTable(std::move(rows)));
}

} // namespace fixture
