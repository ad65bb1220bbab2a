/* Publishes a map several times in one process: many_runs COUNT MAP OUTPUT, paths without quotes and
   backslashes. For each run, a line: its CPU seconds, the most memory of the process until then, and
   what it holds before the run, both in kilobytes. */

#include <marrowpress/marrowpress.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <unistd.h>

static double cpu_seconds(const struct rusage *used) {
    return (double)(used->ru_utime.tv_sec + used->ru_stime.tv_sec) +
           (double)(used->ru_utime.tv_usec + used->ru_stime.tv_usec) * 1e-6;
}

/* 0 when nobody knows. */
static long resident_kilobytes(void) {
    long total = 0;
    long resident = 0;
    FILE *statistics = fopen("/proc/self/statm", "r");
    if (!statistics || fscanf(statistics, "%ld %ld", &total, &resident) != 2) {
        resident = 0;
    }
    if (statistics) {
        fclose(statistics);
    }
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
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
        const long held = resident_kilobytes();
        mp_result *result = NULL;
        const int code = mp_run(request, NULL, &result);
        const int status = mp_result_status(result);
        mp_result_free(result);
        struct rusage used;
        getrusage(RUSAGE_SELF, &used);
        if (code != MP_OK || status != 0) {
            return 1;
        }
        printf("%f %ld %ld\n", cpu_seconds(&used) - earlier, used.ru_maxrss, held);
        earlier = cpu_seconds(&used);
    }
    return 0;
}
