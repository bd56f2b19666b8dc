#include <string>
#include <vector>

#include "host/run.h"

int main(int argc, char** argv) { return clipfio::host::Main(std::vector<std::string>(argv, argv + argc)); }
