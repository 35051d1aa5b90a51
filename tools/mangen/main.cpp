// marvento-mangen SOURCE LANG VERSION OUTPUT: writes one language of a manual page source
// as man(7) text.
#include <fstream>
#include <iostream>
#include <sstream>

#include "ManPage.h"

int main(int argc, char* argv[]) {
  if (argc != 5) {
    std::cerr << "usage: " << argv[0] << " SOURCE LANG VERSION OUTPUT\n";
    return 2;
  }
  std::ifstream in(argv[1], std::ios::binary);
  if (!in) {
    std::cerr << argv[1] << ": cannot be read\n";
    return 1;
  }
  std::stringstream source;
  source << in.rdbuf();
  const auto page = marvento::mangen::RenderPage(source.str(), argv[2], argv[3]);
  if (!page.error.empty()) {
    std::cerr << argv[1] << ": " << page.error << '\n';
    return 1;
  }
  std::ofstream out(argv[4], std::ios::binary | std::ios::trunc);
  out << page.text;
  out.close();
  if (!out) {
    std::cerr << argv[4] << ": cannot be written\n";
    return 1;
  }
  return 0;
}
