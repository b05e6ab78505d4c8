/* Event library towards the host's observation daemon. */
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

/* 0 when the connection is open. */
int NotaUserLib_Init(void);
/* Posts one event; the whole text is a printf format. */
int NotaUserLib_AddNota(const char* format, ...) __attribute__((format(printf, 1, 2)));
void NotaUserLib_Close(void);

#ifdef __cplusplus
}
#endif
