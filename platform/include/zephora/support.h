/* Support library of the host: preferences, product state, logging, audit. */
#pragma once
#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

void Preference_Init(void);

const char* ProductState_GetName(void);
const char* ProductState_GetVersion(void);
const char* ProductState_GetBuildNumberString(void);
const char* ProductState_GetCompilationOption(void);

void Log_SetProductInfo(const char* name, const char* version, const char* build,
                        const char* compilationOption);
void* Log_CfgInterface(void);
int Log_InitWithSyslogSimpleInt(const char* identifier, void* config, const char* prefix);

/* snprintf with the library's rules; returns the length written. */
int Str_Sprintf(char* buffer, size_t size, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

/* One audit record: action, user, service, success (1 or 0), then key and value
 * strings in pairs, ended by a null. */
void ZephAudit_VLog(const char* action, const char* user, const char* service, int success, ...)
    __attribute__((sentinel));

#ifdef __cplusplus
}
#endif
