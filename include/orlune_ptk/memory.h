/* The heap that every block comes from that goes from orlune_ptk to its caller or back. No function
 * here reports a failure. */
#ifndef ORLUNE_PTK_MEMORY_H
#define ORLUNE_PTK_MEMORY_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Allocates a block. Returns its address, for the caller to release with ZEL_free.
 * size: bytes. 0 gives a block of no use, which can be released. The bytes are undefined.
 * Failures: NULL when there is no memory; nothing is reported. */
void* ZEL_malloc(uint32_t size);

/* Allocates a block of zeros. Returns its address, for the caller to release with ZEL_free.
 * count: elements. 0 gives a block of no use, which can be released.
 * size:  bytes of an element; 0 as for count. The product may pass 32 bits.
 * Failures: NULL when there is no memory; nothing is reported. */
void* ZEL_calloc(uint32_t count, uint32_t size);

/* Changes the size of a block, which may move. Returns its new address.
 * block: from this heap; NULL allocates a new one.
 * size:  bytes. What fits of the contents stays, further bytes are undefined. 0 releases the block
 *        and returns NULL; with a block of NULL it allocates as ZEL_malloc does.
 * Failures: NULL when there is no memory, with the block left as it was; nothing is reported. */
void* ZEL_realloc(void* block, uint32_t size);

/* Releases a block of this heap, result tables among them.
 * block: NULL does nothing.
 * Failures: none. */
void ZEL_free(void* block);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
