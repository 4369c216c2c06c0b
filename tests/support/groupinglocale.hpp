#pragma once

#include <locale>
#include <string>

namespace support
{

/// While it lives, new streams write 1000000 as "1.000.000" and 0.5 as "0,5", as in German.
class GroupingLocale
{
public:
  GroupingLocale() : _former(std::locale::global(std::locale(std::locale::classic(), new Punctuation))) {}
  ~GroupingLocale() { std::locale::global(_former); }
  GroupingLocale(const GroupingLocale&) = delete;
  GroupingLocale& operator=(const GroupingLocale&) = delete;

private:
  struct Punctuation : std::numpunct<char>
  {
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
    char do_decimal_point() const override { return ','; }
  };

  std::locale _former;
};

}  // namespace support
