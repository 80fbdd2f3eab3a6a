#pragma once

#include <cstdio>
#include <memory>
#include <string>

namespace tavix::testing {

/// The rows that Python's xlrd reads from a sheet, one per line, cells joined by "|": "T" before texts, "N" before
/// numbers.
inline std::string readWorksheet(const std::string& path) {
    const std::string script = "import sys,xlrd\n"
                               "b=xlrd.open_workbook(sys.argv[1])\n"
                               "for s in b.sheets():\n"
                               " print('#'+s.name, s.nrows)\n"
                               " for r in range(min(s.nrows, 6)):\n"
                               "  print('|'.join('%s%s' % (' TN'[c.ctype] if c.ctype < 3 else '?', c.value)"
                               " for c in s.row(r)))\n";
    const std::string command = "/usr/bin/python3 -c \"" + script + "\" '" + path + "'";
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(::popen(command.c_str(), "r"), &::pclose);
    std::string text;
    for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get()))
        text += static_cast<char>(c);
    return text;
}

} // namespace tavix::testing
