#ifndef MARROWPRESS_MARROWPRESS_H
#define MARROWPRESS_MARROWPRESS_H

/*
 * Publishing from within a program, in C11; marrowpress.hpp is the same for C++20.
 *
 *     mp_options options = MP_OPTIONS_INIT;
 *     mp_result *result = NULL;
 *     int code = mp_run(request, &options, &result);
 *     if (code != MP_OK || mp_result_status(result) != 0) {
 *         fprintf(stderr, "%s\n", mp_result_error(result));
 *     }
 *     mp_result_free(result);
 *
 * All texts are UTF-8 and end in a NUL byte. Bytes of a path that are none come back as U+FFFD.
 * No function throws, prints, or changes what is the process's: signals, locale, environment,
 * umask, current directory, standard streams.
 *
 * Of each function only one call at a time may be given the same result to free; all others may be
 * called from any thread.
 */

/* NOLINTBEGIN(readability-identifier-naming): the names are C's. */

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#pragma GCC visibility push(default)

/* What a call came to. */
enum {
    MP_OK = 0,          /* There is an answer: mp_result_status says which. */
    MP_INVALID = 1,     /* An argument is null, of an unknown size, no UTF-8, or unknown. */
    MP_BUSY = 2,        /* A request is being served in this process, or calls this. */
    MP_FORKED = 3,      /* The process was forked since it loaded the library. Use mp_spawn. */
    MP_CANCELLED = 4,   /* The cancel flag was set. */
    MP_NO_MEMORY = 5,   /* There is not enough memory, or memory_limit allows no more. */
    MP_UNAVAILABLE = 6, /* A part of the installation is missing, or cannot be started. */
    MP_SYSTEM = 7,      /* The system refused a folder, a descriptor or a process. */
    MP_CRASHED = 8,     /* mp_spawn: the child ended without an answer; see mp_result_signal. */
    MP_TIMED_OUT = 9,   /* mp_spawn: the child took longer than it may. */
    MP_INTERNAL = 10    /* Anything else; the text says what. */
};

/* Bits of mp_options.flags. */
enum {
    /* Where a request is being served on another thread, wait for its end. */
    MP_WAIT = 1,
    /* The output goes into a private folder below TMPDIR, which is gone at the end. The request's
       own output is only looked at, and may be empty or missing. */
    MP_CHECK = 2,
    /* As MP_CHECK, and the run ends in front of the output: for keys and dependencies alone. */
    MP_SURVEY = 4,
    /* Fill mp_result_dependency, or mp_result_key. */
    MP_DEPENDENCIES = 8,
    MP_KEYS = 16,
    /* Nobody looks on: there are neither findings, dependencies nor keys. */
    MP_NO_FINDINGS = 32
};

/* The language of findings; what mp_result_error gives is English. */
enum {
    MP_LANGUAGE_AUTO = 0, /* What the environment says, in LC_ALL, LC_MESSAGES or LANG. */
    MP_LANGUAGE_ENGLISH = 1,
    MP_LANGUAGE_GERMAN = 2
};

/* The status of an answer of MP_OK that has none. */
#define MP_NO_STATUS INT32_MIN

typedef struct mp_result mp_result;

/* Something that whoever publishes has to know. What is not known is empty, or 0. */
typedef struct mp_finding {
    const char* id;       /* "MP208" */
    const char* severity; /* "error", "warning" or "note" */
    const char* text;
    const char* hint;
    const char* file; /* Absolute. */
    uint32_t line;    /* From 1. */
    uint32_t column;  /* From 1, in UTF-16 code units. */
    const char* json; /* All of it: findings.schema.json. */
} mp_finding;

/* A file that the run has read, or has looked for. */
typedef struct mp_dependency {
    const char* file;  /* Absolute. */
    const char* kind;  /* "map reference", "topic", ...: dependencies.schema.json */
    const char* state; /* "read", "absent" or "unreadable" */
    const char* from;  /* The file of the first reference to it; may be empty. */
    uint32_t line;     /* The place of that reference; 0 where it is not known. */
    uint32_t column;
    const char* json; /* All of it: dependencies.schema.json. */
} mp_dependency;

/* A value of the answer. What its type does not have is 0, or null. */
typedef struct mp_value {
    uint32_t type;            /* 1, 3, 6 or 15 */
    int32_t integer;          /* 1 */
    const char* text;         /* 3 */
    size_t count;             /* 6 and 15: how many there are of the following. */
    const char* const* texts; /* 6 */
    const int32_t* integers;  /* 15 */
} mp_value;

/* A document that is open in the caller. */
typedef struct mp_document {
    uint32_t id;      /* Not 0, and each once. */
    int32_t flag;     /* Divides used documents in the answer, as property 131 does. */
    const char* path; /* Copied before the next call. */
} mp_document;

/*
 * What may be called back, each with the pointer that stands beside it in the options, on the
 * thread of the call. Texts live as long as the callback. It may call whatever it wants but
 * mp_run, which answers MP_BUSY there, and mp_spawn into the folder into which the run writes that
 * calls back, which would wait for its end, and answers MP_BUSY, too. It must neither throw nor
 * jump out.
 */

/* Gets each finding. They are folded, and so known when the run is over: all come at the end. */
typedef void (*mp_finding_function)(void* user, const mp_finding* finding);

/* Gets each progress line, without a line end. */
typedef void (*mp_progress_function)(void* user, const char* line);

/* Says which file a public identifier stands for: writes the absolute path, and a NUL, into the
   `size` bytes at `path`, and gives 1; gives 0 where it does not know, and catalogs are asked. */
typedef int (*mp_entity_function)(void* user, const char* public_id, char* path, size_t size);

/* Fills in the document number `index`, from 0, and gives 1; gives 0 when there are no more.
   Called before the run begins. */
typedef int (*mp_document_function)(void* user, size_t index, mp_document* document);

/*
 * All but `size` may be 0. `size` is that of the structure as the caller knows it: what a smaller
 * one lacks counts as 0, and what a larger one has beyond ours must be 0.
 */
typedef struct mp_options {
    size_t size;
    uint32_t flags;
    int32_t language;
    /* XML catalogs, as paths or file: URIs. None: XML_CATALOG_FILES, or the usual ones. */
    const char* const* catalogs;
    size_t catalog_count;
    mp_finding_function on_finding;
    void* finding_user;
    mp_progress_function on_progress;
    void* progress_user;
    mp_entity_function resolve_entity;
    void* entity_user;
    mp_document_function open_document;
    void* document_user;
    /* Looked at between documents, by an atomic load; any other value than 0 ends the run. */
    const int32_t* cancel;
    /* mp_spawn alone: the most bytes of address space of the child, 0 for no limit; and the
       most milliseconds that it may take, 0 for no limit. */
    uint64_t memory_limit;
    uint64_t time_limit;
} mp_options;

#ifdef __cplusplus
inline mp_options mp_make_options() noexcept {
    mp_options options{};
    options.size = sizeof(options);
    return options;
}
#define MP_OPTIONS_INIT mp_make_options()
#else
#define MP_OPTIONS_INIT \
    { .size = sizeof(mp_options) }
#endif

/*
 * Serves a request in this process, one at a time.
 *
 * request  JSON as request.schema.json describes it. Paths are taken against the current directory.
 *          The folder of the output has to be there, and what is in the output's place is replaced.
 * options  May be null.
 * result   Is set to what the caller has to free by mp_result_free, whatever the code is; to null
 *          where there is no memory even for that. Null itself is MP_INVALID.
 *
 * While it runs, libxml2 opens local files alone, for the whole process; input callbacks that
 * others have registered there, and catalogs that they have loaded, are gone afterwards. Who needs
 * them calls mp_spawn.
 */
int mp_run(const char* request, const mp_options* options, mp_result** result);

/*
 * As mp_run, in a child process: so a crash, or a limit of memory, costs the request and not the
 * caller. Any number may run at a time, from any thread, from within a callback too.
 *
 * The child is waited for by its number: a process that ignores SIGCHLD, or waits for all children,
 * gets the same answer, but of a crash not the signal. It has nothing open of the caller.
 */
int mp_spawn(const char* request, const mp_options* options, mp_result** result);

/* Null is no fault, and changes nothing. */
void mp_result_free(mp_result* result);

/*
 * What a result holds, which lives until it is freed. Of a null result, and behind the last index,
 * there is nothing: 0, null, or an empty text where a text is given.
 */

int mp_result_code(const mp_result* result);

/* A sentence about what went wrong; empty when nothing did. Null: that there is no memory. */
const char* mp_result_error(const mp_result* result);

/* 0, -42 or -43 as in the answer of the module; MP_NO_STATUS without one. */
int32_t mp_result_status(const mp_result* result);

/* 0, or the signal that ended the child. */
int mp_result_signal(const mp_result* result);

size_t mp_result_value_count(const mp_result* result);
const mp_value* mp_result_value(const mp_result* result, size_t index);

/* Without artefacts. */
size_t mp_result_finding_count(const mp_result* result);
const mp_finding* mp_result_finding(const mp_result* result, size_t index);

size_t mp_result_dependency_count(const mp_result* result);
const mp_dependency* mp_result_dependency(const mp_result* result, size_t index);

/* A key as a JSON object: keys.schema.json. */
size_t mp_result_key_count(const mp_result* result);
const char* mp_result_key(const mp_result* result, size_t index);

/* The absolute paths of what a run with the status 0 has written. */
size_t mp_result_output_count(const mp_result* result);
const char* mp_result_output(const mp_result* result, size_t index);

/*
 * XML catalogs, for a host of its own over the bare interfaces; mp_run brings them by itself. One
 * call at a time, and none beside mp_run. While some are open, dependencies list no catalogs.
 */
typedef struct mp_catalogs mp_catalogs;

/* `names` as in mp_options; `catalogs` is set to what mp_catalogs_free frees, or to null. */
int mp_catalogs_open(const char* const* names, size_t count, mp_catalogs** catalogs);
void mp_catalogs_free(mp_catalogs* catalogs);

/* As mp_entity_function; 0 as well for null, and for a path that does not fit. */
int mp_catalogs_find(mp_catalogs* catalogs, const char* id, char* path, size_t size);

/* What a code means, as a constant text; that of an unknown code says so. */
const char* mp_code_text(int code);

/* "0.1.0" */
const char* mp_version(void);

#pragma GCC visibility pop

#ifdef __cplusplus
}
#endif

/* NOLINTEND(readability-identifier-naming) */

#endif
