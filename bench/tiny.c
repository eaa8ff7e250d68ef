/* What the smallest piece is measured against: a C program that opens, copies and writes such files and does nothing else.
 *
 *   tiny INFILE OUTFILE
 */
#include <stdio.h>

int main(int argc, char **argv) {
  if (argc != 3) {
    return 1;
  }
  FILE *input = fopen(argv[1], "r");
  FILE *output = fopen(argv[2], "w");
  FILE *copy = tmpfile();
  if (input == NULL || output == NULL || copy == NULL) {
    return 1;
  }
  for (int c = getc(input); c != EOF; c = getc(input)) {
    putc(c, copy);
  }
  fclose(input);
  rewind(copy);
  for (int c = getc(copy); c != EOF; c = getc(copy)) {
    putc(c, output);
  }
  fclose(copy);
  fputs("copied\n", stderr);
  return fclose(output) == 0 ? 0 : 1;
}
