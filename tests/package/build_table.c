/* Builds a code table of the codes 0 and 1; the exit status is the library's status, its sign changed. */
#include <stdlib.h>

#include "moxvc.h"

int main(void) {
  static const MoxVlcSpec spec[] = {1, 1, 1, 2, 0, 10, 1, 11, -1};
  MoxVlcTable* table = NULL;
  const MoxStatus status = moxiHuffmanTableInitAlloc_32s(spec, &table);
  if (status == moxStsOk && (!table || moxiHuffmanTableFree_32s(table) != moxStsOk)) return EXIT_FAILURE;
  return -status;
}
