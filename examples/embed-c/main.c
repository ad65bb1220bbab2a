/* Publishes a map from C: embed-c MAP OUTPUT, paths without quotes and backslashes */

#include <marrowpress/marrowpress.h>
#include <stdio.h>
#include <stdlib.h>

static void show(void *user, const mp_finding *finding) {
    fprintf(user, "%s:%u: %s [%s]\n", finding->file, (unsigned)finding->line, finding->text,
            finding->id);
}

int main(int argc, char **argv) {
    static const char pattern[] =
        "{\"type\":\"PublishComp\",\"params\":{\"ditamap\":\"%s\",\"output\":\"%s\","
        "\"ditaVal\":\"\",\"keyspaceDocDtd\":\"map.dtd\",\"compositeDocDtd\":\"ditabase.dtd\","
        "\"usePrint\":false}}";
    char request[8192];
    if (argc != 3 || snprintf(request, sizeof(request), pattern, argv[1], argv[2]) < 0) {
        fputs("usage: embed-c MAP OUTPUT\n", stderr);
        return 2;
    }
    mp_options options = MP_OPTIONS_INIT;
    options.on_finding = show;
    options.finding_user = stderr;
    mp_result *result = NULL;
    const int code = mp_run(request, &options, &result);
    const int is_published = code == MP_OK && mp_result_error(result)[0] == '\0';
    if (!is_published) {
        fprintf(stderr, "embed-c: %s\n", mp_result_error(result));
    }
    for (size_t i = 0; i < mp_result_output_count(result); ++i) {
        puts(mp_result_output(result, i));
    }
    mp_result_free(result);
    return is_published ? EXIT_SUCCESS : EXIT_FAILURE;
}
