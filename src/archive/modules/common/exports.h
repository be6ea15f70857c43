// The exported functions of a module's library, written once.
#pragma once

#include "archive/archiver_abi.h"
#include "archive/modules/common/module.h"

// Exports the functions of archiver_abi.h under `prefix` for `family`, a quendle::modules::Family.
#define QUENDLE_EXPORT_MODULE(prefix, family)                                                              \
  namespace {                                                                                              \
  quendle::modules::Module& TheModule() {                                                                  \
    static quendle::modules::Module module(family);                                                        \
    return module;                                                                                         \
  }                                                                                                        \
  }                                                                                                        \
  extern "C" {                                                                                             \
  ARCHIVER_EXPORT int32_t ARCHIVER_CALL prefix(void*, const char* line, char* output, uint32_t size) {     \
    return TheModule().Command(line, output, size);                                                        \
  }                                                                                                        \
  ARCHIVER_EXPORT int32_t ARCHIVER_CALL prefix##CheckArchive(const char* archive, int32_t) {               \
    return TheModule().CheckArchive(archive);                                                              \
  }                                                                                                        \
  ARCHIVER_EXPORT ArchiverHandle ARCHIVER_CALL prefix##OpenArchive(void*, const char* archive, uint32_t) { \
    return TheModule().OpenArchive(archive);                                                               \
  }                                                                                                        \
  ARCHIVER_EXPORT int32_t ARCHIVER_CALL prefix##FindFirst(ArchiverHandle handle, const char*,              \
                                                          ArchiverEntry* entry) {                          \
    return TheModule().FindFirst(handle, entry);                                                           \
  }                                                                                                        \
  ARCHIVER_EXPORT int32_t ARCHIVER_CALL prefix##FindNext(ArchiverHandle handle, ArchiverEntry* entry) {    \
    return TheModule().FindNext(handle, entry);                                                            \
  }                                                                                                        \
  ARCHIVER_EXPORT int32_t ARCHIVER_CALL prefix##CloseArchive(ArchiverHandle handle) {                      \
    return TheModule().CloseArchive(handle);                                                               \
  }                                                                                                        \
  ARCHIVER_EXPORT int32_t ARCHIVER_CALL prefix##UseUtf8(int32_t on) {                                      \
    return TheModule().UseUtf8(on);                                                                        \
  }                                                                                                        \
  ARCHIVER_EXPORT uint32_t ARCHIVER_CALL prefix##FullName(ArchiverHandle handle, char* name,               \
                                                          uint32_t size) {                                 \
    return TheModule().FullName(handle, name, size);                                                       \
  }                                                                                                        \
  ARCHIVER_EXPORT int32_t ARCHIVER_CALL prefix##SetSession(const ArchiverSession* session) {               \
    return TheModule().SetSession(session);                                                                \
  }                                                                                                        \
  ARCHIVER_EXPORT uint32_t ARCHIVER_CALL prefix##Credits(char* text, uint32_t size) {                      \
    return TheModule().Credits(text, size);                                                                \
  }                                                                                                        \
  ARCHIVER_EXPORT int32_t ARCHIVER_CALL prefix##ExtractCalls(void*, ArchiverCall* calls, uint32_t count) { \
    return TheModule().ExtractCalls(calls, count);                                                         \
  }                                                                                                        \
  }                                                                                                        \
  static_assert(true, "a semicolon follows")
