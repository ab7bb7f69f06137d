// A program that does nothing, with the libraries of talctl: what starting costs at least.
int main() { return 0; }
