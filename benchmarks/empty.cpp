// SPDX-License-Identifier: MIT
// A program that does nothing, for what a process pays that starts with the library.
int main() {
    return 0;
}
