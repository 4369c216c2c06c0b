// Linked with the objects of the library in several orders: in each order, static initialisers find the records.

#include "linkorder.hpp"

#include <iostream>

int main()
{
  const std::string late = missingRecords();
  std::cout << "missing in a static initialiser: " << earlyMissingRecords() << "\nmissing in main: " << late << '\n';
  return earlyMissingRecords().empty() && late.empty() ? 0 : 1;
}
