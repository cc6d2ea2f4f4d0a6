#include "gui/Application.h"
#include "gui/Resources.h"

int main(int argc, char** argv) {
  lodex::loadResources();
  lodex::Application application(argc, argv);
  return 0;
}
