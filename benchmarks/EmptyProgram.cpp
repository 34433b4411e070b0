// What any program that prints a line takes; `memory/program` holds ours against it.
#include <iostream>

int main() { std::cout << "upstairs\n"; }
