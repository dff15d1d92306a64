// System calls; a comment may say fopen("a", "r"), and so may a text.
#include <unistd.h>

#include <fstream>

void Calls() {
  std::fopen("fopen()", "r");
  ::remove("a");
  list.remove(1);
  tabwerk::platform::time(0);
  std::snprintf(buffer, sizeof buffer, "%d", 1);
}
