/* A C heap of four functions and no others, to be preloaded in place of the machine's. Each block
 * begins behind a page that nobody may touch: whoever asks the machine's own heap about a block of
 * this one, which looks in front of it, is stopped there. */
#define _DEFAULT_SOURCE
#include <stddef.h>
#include <stdint.h>
#include <string.h>
#include <sys/mman.h>

enum { PAGE = 4096 };

/* A page with the size of the mapping and of the block, the page that nobody may touch, the block.
 */
typedef struct Head {
  size_t mapped;
  size_t size;
} Head;

static Head* HeadOf(void* block) {
  return (Head*)((uintptr_t)block - 2 * PAGE);
}

void* malloc(size_t size) {
  if (size > (size_t)1 << 40) return NULL;
  const size_t mapped = 2 * PAGE + (size + PAGE - 1) / PAGE * PAGE;
  char* start = mmap(NULL, mapped + PAGE, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (start == MAP_FAILED) return NULL;
  *(Head*)(void*)start = (Head){mapped + PAGE, size};
  mprotect(start + PAGE, PAGE, PROT_NONE);
  return start + 2 * PAGE;
}

void* calloc(size_t count, size_t size) {
  size_t bytes = 0;
  return __builtin_mul_overflow(count, size, &bytes) ? NULL : malloc(bytes);
}

void free(void* block) {
  if (!block) return;
  Head* head = HeadOf(block);
  munmap(head, head->mapped);
}

void* realloc(void* block, size_t size) {
  void* moved = malloc(size);
  if (!block || !moved) return moved;
  const size_t held = HeadOf(block)->size;
  memcpy(moved, block, held < size ? held : size);
  free(block);
  return moved;
}
