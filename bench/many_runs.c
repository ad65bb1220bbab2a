/* Publishes a map several times in one process: many_runs COUNT MAP OUTPUT, paths without quotes and
   backslashes. For each run, a line: its CPU seconds, and the most memory of the process until then in
   kilobytes. */

#include <marrowpress/marrowpress.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/resource.h>

static double cpu_seconds(const struct rusage *used) {
    return (double)(used->ru_utime.tv_sec + used->ru_stime.tv_sec) +
           (double)(used->ru_utime.tv_usec + used->ru_stime.tv_usec) * 1e-6;
}

int main(int argc, char **argv) {
    static const char pattern[] =
        "{\"type\":\"PublishComp\",\"params\":{\"ditamap\":\"%s\",\"output\":\"%s\","
        "\"ditaVal\":\"\",\"keyspaceDocDtd\":\"map.dtd\",\"compositeDocDtd\":\"ditabase.dtd\","
        "\"usePrint\":false}}";
    char request[8192];
    if (argc != 4 || snprintf(request, sizeof(request), pattern, argv[2], argv[3]) < 0) {
        fputs("usage: many_runs COUNT MAP OUTPUT\n", stderr);
        return 2;
    }
    double earlier = 0;
    for (int left = atoi(argv[1]); left > 0; --left) {
        mp_result *result = NULL;
        const int code = mp_run(request, NULL, &result);
        const int status = mp_result_status(result);
        mp_result_free(result);
        struct rusage used;
        getrusage(RUSAGE_SELF, &used);
        if (code != MP_OK || status != 0) {
            return 1;
        }
        printf("%f %ld\n", cpu_seconds(&used) - earlier, used.ru_maxrss);
        earlier = cpu_seconds(&used);
    }
    return 0;
}
