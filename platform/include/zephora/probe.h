/* Kernel information nodes. */
#pragma once
#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef enum ProbeNode {
    Probe_NODE_system_version = 1,   /* record of 344 bytes */
    Probe_NODE_system_bootOption = 2 /* four bytes; first byte 1: audit mode */
} ProbeNode;

/* Size of the system version record and offsets of its fields. */
enum {
    PROBE_SYSTEM_VERSION_SIZE = 344,
    PROBE_SYSTEM_VERSION_PRODUCT = 0,
    PROBE_SYSTEM_VERSION_VERSION = 32,
    PROBE_SYSTEM_VERSION_BUILD = 292
};

/* 0 on success. */
int Probe_Get(ProbeNode node, void* buffer, size_t size);

#ifdef __cplusplus
}
#endif
