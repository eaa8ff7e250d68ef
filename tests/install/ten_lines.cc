#include <korvo/korvo.h>

#include <cstdio>

int main() {
  korvo::Result result = korvo::render("i3 = 4 .5 -2 { p2 .25 p3 1.5 p4 no c4 a }");
  std::fwrite(result.score.data(), 1, result.score.size(), stdout);
  std::fputs(result.ok ? "" : result.messages.back().text.c_str(), stderr);
  return result.ok ? 0 : 1;
}
