// The library's dynamic symbol table holds exactly the names of the exports list.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <set>
#include <string>

namespace {

std::set<std::string> listedNames() {
    std::set<std::string> names;
    std::ifstream in(ZEV_EXPORTS_TXT);
    for (std::string line; std::getline(in, line);)
        if (!line.empty()) names.insert(line);
    return names;
}

// Defined global symbols of the shared library's dynamic table.
std::set<std::string> exportedSymbols() {
    std::set<std::string> names;
    std::string cmd = std::string("nm -D --defined-only '") + ZEV_LIBRARY_PATH + "'";
    FILE* p = popen(cmd.c_str(), "r");
    if (!p) return names;
    char buf[1024];
    while (std::fgets(buf, sizeof buf, p)) {
        char addr[64], kind[8], name[900];
        if (std::sscanf(buf, "%63s %7s %899s", addr, kind, name) == 3) {
            std::string n(name);
            if (auto at = n.find('@'); at != std::string::npos) n.resize(at);  // symbol versions
            names.insert(n);
        }
    }
    pclose(p);
    return names;
}

}  // namespace

TEST(Exports, DynamicTableIsExactlyTheList) {
    auto listed = listedNames();
    auto exported = exportedSymbols();
    ASSERT_FALSE(listed.empty());
    ASSERT_FALSE(exported.empty()) << "could not read the dynamic symbols of " << ZEV_LIBRARY_PATH;
    for (const auto& n : listed) EXPECT_TRUE(exported.count(n)) << "listed but not exported: " << n;
    for (const auto& n : exported) EXPECT_TRUE(listed.count(n)) << "exported but not listed: " << n;
}

extern "C" const void* const zev_export_refs[];

TEST(Exports, EveryListedNameIsDeclaredInTheHeader) {
    // zev_export_refs is generated from the list and compiled as C against the
    // public header: a name the header lacks would not compile.
    std::size_t n = 0;
    while (zev_export_refs[n]) ++n;
    EXPECT_EQ(n, listedNames().size());
}
