/* The plain C interface of an archiver library: what a loadable module must export to teach the program one
 * family of archives, and what it may export besides.
 *
 * A library has a prefix, say "UnZip", and exports its functions under the prefix followed by the names below
 * (UnZipCheckArchive). Six functions are required; each optional export is looked for by name and works
 * without the others. All calls come from one thread. Strings end with a NUL; without UseUtf8 they are in the
 * ANSI code page (Windows-31J on systems that have none of their own). Paths are absolute, with the system's
 * separator.
 *
 *   required                optional
 *   --------------------    ------------------------------------------------------------
 *   (the bare prefix)       UseUtf8        strings in UTF-8
 *   CheckArchive            FullName       entry names longer than the record's field
 *   OpenArchive             SetSession     progress, questions, password, problems
 *   FindFirst               ExtractCalls   several calls over one archive in one pass
 *   FindNext                Credits        who made it
 *   CloseArchive
 */
#ifndef QUENDLE_ARCHIVER_ABI_H
#define QUENDLE_ARCHIVER_ABI_H

#include <stdint.h>

#ifdef _WIN32
#define ARCHIVER_CALL __stdcall
#define ARCHIVER_EXPORT __declspec(dllexport)
#else
#define ARCHIVER_CALL
#define ARCHIVER_EXPORT __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* An open archive; 0 is none. */
typedef uint32_t ArchiverHandle;

#define ARCHIVER_NAME_SIZE 513

/* What is told of one entry. Numbers are little-endian, strings padded with NUL; without any NUL a string
 * fills its field. 26 bytes of numbers and 532 of strings without gaps, 560 bytes with the two that round it
 * up. The program reads file_name and, to tell which files an update would replace, date and time, which are 0 where the
 * archive does not say them. */
typedef struct ArchiverEntry {
  uint32_t original_size; /* bytes; the low 32 bits of larger ones */
  uint32_t compressed_size;
  uint32_t crc;
  uint32_t flag;
  uint32_t os_type;
  uint16_t ratio;                     /* packed size in thousandths of the original */
  uint16_t date;                      /* of MS-DOS, local time: year since 1980 << 9 | month << 5 | day */
  uint16_t time;                      /* hour << 11 | minute << 5 | second / 2 */
  char file_name[ARCHIVER_NAME_SIZE]; /* path inside the archive, "/" or "\" between its parts and, for a
                                         folder, at its end */
  char dummy[3];
  char attribute[8];
  char mode[8]; /* how it is packed, such as "-lh5-" */
} ArchiverEntry;

/* ---- required --------------------------------------------------------------------------------------- */

/* Nonzero: the file is an archive of this family, also one behind a self-extracting program. mode is 0. */
typedef int32_t(ARCHIVER_CALL* ArchiverCheckArchive)(const char* archive, int32_t mode);

/* Opens an archive to list it. window is the parent of dialogs, NULL for none. 0: it cannot be opened; a
 * library with a session has reported the problem. */
typedef ArchiverHandle(ARCHIVER_CALL* ArchiverOpenArchive)(void* window, const char* archive, uint32_t mode);

/* The first entry, in archive order, that the wildcard (always "*.*", which means all) fits; then the next
 * one. 0: *entry is filled; anything else: there is none, or an error, which a library with a session has
 * reported. */
typedef int32_t(ARCHIVER_CALL* ArchiverFindFirst)(ArchiverHandle handle, const char* wildcard,
                                                  ArchiverEntry* entry);
typedef int32_t(ARCHIVER_CALL* ArchiverFindNext)(ArchiverHandle handle, ArchiverEntry* entry);

typedef int32_t(ARCHIVER_CALL* ArchiverCloseArchive)(ArchiverHandle handle);

/* Does what the command line asks for and writes the log of it to output: lines that end with CR LF, cut at
 * size bytes, with a NUL behind them only when they are shorter. 0 is success: all that was asked for was
 * extracted, or left alone by the rule for existing files.
 *
 * Command lines are of the family's dialect: a command, switches, the archive and the folder to extract into
 * in quotes, and "@file", the response file: the names of the entries to extract, one in a line, each in
 * quotes, upper-cased, "/" between their parts. A name means every entry that is equal to it but for case. */
typedef int32_t(ARCHIVER_CALL* ArchiverCommand)(void* window, const char* command_line, char* output,
                                                uint32_t size);

/* ---- optional: UseUtf8 ------------------------------------------------------------------------------ */

/* From now on every string in either direction, response files included, is UTF-8 (paths of POSIX: the bytes
 * of the file system). Called once, before anything else. Nonzero: understood. */
typedef int32_t(ARCHIVER_CALL* ArchiverUseUtf8)(int32_t on);

/* ---- optional: FullName ----------------------------------------------------------------------------- */

/* The whole name of the entry that FindFirst or FindNext gave last. Copies as much of it as fits, with a NUL
 * behind it, and returns the number of bytes that it takes without the NUL. */
typedef uint32_t(ARCHIVER_CALL* ArchiverFullName)(ArchiverHandle handle, char* name, uint32_t size);

/* ---- optional: SetSession --------------------------------------------------------------------------- */

/* One side of the question whether to overwrite. */
typedef struct ArchiverVersion {
  const char* path;
  uint64_t size;      /* bytes */
  int64_t write_time; /* seconds since 1970, UTC */
} ArchiverVersion;

/* The answers to questions. */
#define ARCHIVER_NO 0
#define ARCHIVER_YES 1
#define ARCHIVER_CANCEL 2

/* A reason, or a question, in its parts, so that the program can say it in the user's language. Nothing in the parts is
 * looked into, so that a name in an archive means nothing but itself. */
typedef struct ArchiverReason {
  /* As the program calls it (src/reasons/reason_table.inc). NULL: a name, a number or other words alone. */
  const char* name;
  /* The whole in one English line without a full stop: what is shown when the program knows no such name, or not with
   * that many parts. */
  const char* words;
  /* What the sentence of that name is filled in with, in its order. */
  const struct ArchiverReason* parts;
  uint32_t part_count;
} ArchiverReason;

/* Whom a library reports to and asks. user is handed back in each call. No function is NULL. The members below `problem`
 * are only there when struct_size counts them in. */
typedef struct ArchiverSession {
  uint32_t struct_size; /* of this struct: later versions add members at its end */
  void* user;

  /* The encoding of entry names that do not say theirs, by its usual name ("CP932"). "": the library's own
   * rule. */
  const char* charset;

  /* Called at least ten times a second during an extraction with the entry in work and the bytes written of
   * all that are to be (0: unknown). 0 cancels: what is complete stays, nothing else does. While a file is looked
   * at or listed it is called with the archive itself, and cancels that; the answer then is that of a failure. */
  int32_t(ARCHIVER_CALL* progress)(void* user, const char* path, uint64_t done, uint64_t total);

  /* May existing be replaced by incoming? Asked where the command line says to ask. */
  int32_t(ARCHIVER_CALL* overwrite)(void* user, const ArchiverVersion* existing,
                                    const ArchiverVersion* incoming);

  /* A password for the archive, with a NUL, into buffer. Asked again for as long as none fits; ARCHIVER_NO:
   * there is none (any more). */
  int32_t(ARCHIVER_CALL* password)(void* user, const char* archive, char* buffer, uint32_t size);

  /* May the extraction go on although something is suspicious, as the English sentence says? */
  int32_t(ARCHIVER_CALL* proceed)(void* user, const char* question);

  /* Something is not extracted, or not readable: which entry ("": the archive itself) and why, one English
   * line without a full stop. The call in progress will end with a failure. */
  void(ARCHIVER_CALL* problem)(void* user, const char* entry, const char* reason);

  /* Paths that the program needs, with a NULL at the end. No entry is to replace such a file, however it is called or
   * linked, nor to become one that does not exist yet, nor to come into such a folder: it is a problem, and the rest is
   * extracted. NULL: none. */
  const char* const* protected_paths;

  /* Told of each file that an archive is read from, while it is opened or extracted. They are to be kept in the
   * same way. */
  void(ARCHIVER_CALL* reads_from)(void* user, const char* path);

  /* To be called instead of problem and proceed by a library that knows what the program calls its reasons. */
  void(ARCHIVER_CALL* problem_of)(void* user, const char* entry, const ArchiverReason* reason);
  int32_t(ARCHIVER_CALL* proceed_for)(void* user, const ArchiverReason* question);
} ArchiverSession;

/* The session for all calls until the next SetSession; NULL: none, then nothing is asked and every answer is
 * no. The library keeps no pointer to the struct itself beyond that. */
typedef int32_t(ARCHIVER_CALL* ArchiverSetSession)(const ArchiverSession* session);

/* ---- optional: ExtractCalls ------------------------------------------------------------------------- */

typedef struct ArchiverCall {
  const char* command_line;
  char* output; /* as for the command */
  uint32_t output_size;
  int32_t result; /* out: as of the command */
} ArchiverCall;

/* Does the calls, which are all over one archive, reading it once: a solid archive of a thousand folders is
 * unpacked once, not a thousand times. What each call extracts and logs is what the same command lines one
 * after the other would, except that a call that fails need not keep those behind it from extracting. Returns
 * the first result that is not 0, or 0. */
typedef int32_t(ARCHIVER_CALL* ArchiverExtractCalls)(void* window, ArchiverCall* calls, uint32_t count);

/* ---- optional: Credits ------------------------------------------------------------------------------ */

/* One line for the list of libraries, which puts "(c) " before it: whose work the library is, and which others
 * are under it in which versions. Copies as much of it as fits, with a NUL behind it, and returns the number of
 * bytes that it takes without the NUL. */
typedef uint32_t(ARCHIVER_CALL* ArchiverCredits)(char* text, uint32_t size);

#ifdef __cplusplus
} /* extern "C" */

static_assert(sizeof(ArchiverEntry) == 560, "the record that archiver libraries fill");
#endif

#endif
