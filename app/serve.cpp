// app/serve.cpp - the HTTP server of quorl --serve: routes, answers, event
// streams and shutdown. The only file that uses the HTTP library
// (cpp-httplib); the analyses themselves are app/jobs.h's.
#include "app/serve.h"

#include <csignal>
#include <cstdio>
#include <map>

#include <pthread.h>
#include <unistd.h>

#include <httplib.h>

#include "app/jobs.h"
#include "app/webassets.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr size_t kMaxJobs = 32;            // analyses kept; the oldest finished one makes room
constexpr int kBoxesPerEvent = 50000;      // a larger grid follows in further events
constexpr auto kEventGap = std::chrono::milliseconds(100);  // at most 10 events a second
constexpr auto kStreamLife = std::chrono::minutes(10);      // then the browser reconnects

// ---- JSON text -------------------------------------------------------------

// s as a JSON string. Bytes that are not UTF-8 become '?', so that any name
// or value a client sent comes back as valid JSON.
std::string json_text(const std::string &s)
{
    std::string out = "\"";
    for (size_t i = 0; i < s.size(); i++) {
        const unsigned char c = (unsigned char)s[i];
        const int more = c >= 0xF0 && c < 0xF5 ? 3 : c >= 0xE0 ? 2 : c >= 0xC2 && c < 0xE0 ? 1 : 0;
        if (c >= 0x80) {
            bool ok = more > 0 && i + more < s.size();
            for (int k = 1; ok && k <= more; k++) ok = ((unsigned char)s[i + k] & 0xC0) == 0x80;
            if (!ok) {
                out += '?';
                continue;
            }
            out.append(s, i, (size_t)more + 1);
            i += (size_t)more;
        } else if (c == '"' || c == '\\') {
            out += '\\';
            out += (char)c;
        } else if (c < 0x20) {
            char esc[8];
            snprintf(esc, sizeof esc, "\\u%04x", c);
            out += esc;
        } else {
            out += (char)c;
        }
    }
    return out + "\"";
}

std::string number(double v)
{
    if (std::isnan(v)) return "null";
    char buf[32];
    snprintf(buf, sizeof buf, "%.17g", v);
    return buf;
}

void answer(httplib::Response &res, int status, const std::string &json)
{
    res.status = status;
    res.set_header("Cache-Control", "no-store");
    res.set_content(json + "\n", "application/json");
}

void refuse(httplib::Response &res, int status, const std::string &error)
{
    answer(res, status, "{\"error\": " + json_text(error) + "}");
}

const char *state_name(JobState s)
{
    return s == JOB_RUNNING ? "running" : s == JOB_FINISHED ? "finished" : "failed";
}

std::string progress_fields(const JobView &v)
{
    return "\"size\": " + std::to_string(v.size) + ", \"pass\": " + std::to_string(v.pass) +
           ", \"passes\": " + std::to_string(v.passes) + ", \"grid\": " + std::to_string(v.grid) +
           ", \"count\": " + std::to_string(v.count);
}

// GET /api/analyses/ID: the state; once finished, the report and the t
// quantiles the page needs to refit a choice of sizes.
std::string state_json(const Job &job, const JobView &v)
{
    char image[160];
    snprintf(image, sizeof image,
             ", \"width\": %d, \"height\": %d, \"region\": {\"left\": %d, \"bottom\": %d, \"right\": %d, \"top\": %d}",
             job.width, job.height, job.left, job.bottom, job.right, job.top);
    std::string s = "{\"id\": " + json_text(job.id) + ", \"name\": " + json_text(job.name) + image + ", \"state\": \"" +
                    state_name(v.state) + "\", \"progress\": {" + progress_fields(v) + "}, \"error\": " +
                    (v.state == JOB_FAILED ? json_text(v.error) : "null");
    if (v.state != JOB_FINISHED) return s + ", \"report\": null, \"t975\": null}";
    std::string report = v.report;
    while (!report.empty() && report.back() == '\n') report.pop_back();
    s += ", \"report\": " + report + ", \"t975\": [";
    for (size_t i = 0; i < v.t975.size(); i++) s += (i ? ", " : "") + number(v.t975[i]);
    return s + "]}";
}

// ---- the analyses ----------------------------------------------------------

struct Registry {
    std::mutex m;
    std::map<long, std::shared_ptr<Job>> jobs;  // by number: oldest first
    long next = 1;
};

std::shared_ptr<Job> find_job(Registry *r, const std::string &id)
{
    std::lock_guard<std::mutex> lock(r->m);
    for (auto &[n, job] : r->jobs)
        if (job->id == id) return job;
    return nullptr;
}

// Makes room for one more job: forgets the oldest that has ended. False when
// every kept job is still counting.
bool make_room(Registry *r)
{
    std::shared_ptr<Job> old;
    {
        std::lock_guard<std::mutex> lock(r->m);
        if (r->jobs.size() < kMaxJobs) return true;
        for (auto it = r->jobs.begin(); it != r->jobs.end(); ++it) {
            std::unique_lock<std::mutex> job_lock(it->second->m);
            if (it->second->view.state == JOB_RUNNING) continue;
            job_lock.unlock();
            old = it->second;
            r->jobs.erase(it);
            break;
        }
    }
    if (old) StopJob(old.get());
    return old != nullptr;
}

void start_analysis(Registry *r, const Options *defo, const ExtraOptions *defx, const httplib::Request &req,
                    const std::string &body, httplib::Response &res)
{
    Options o = *defo;
    ExtraOptions x = *defx;
    x.json.clear(), x.plot.clear(), x.batch.clear();
    std::string name = "upload", error;
    const JobParams params(req.params.begin(), req.params.end());
    if (!ParseJobParams(params, &o, &x, &name, &error)) return refuse(res, 400, error);
    if (body.empty()) return refuse(res, 400, "no image: send the image file as the body of the request");
    if (!make_room(r)) return refuse(res, 503, "too many analyses are counting; try again when one has finished");
    long n;
    {
        std::lock_guard<std::mutex> lock(r->m);
        n = r->next++;
    }
    auto job = StartJob(std::to_string(n), body.data(), body.size(), &o, &x, name, &error);
    if (!job) return refuse(res, 422, error);
    {
        std::lock_guard<std::mutex> lock(r->m);
        r->jobs[n] = job;
    }
    res.set_header("Location", "/api/analyses/" + job->id);
    answer(res, 201, "{\"id\": " + json_text(job->id) + "}");
}

// ---- server-sent events ----------------------------------------------------

// Where one event stream stands.
struct Watch {
    long version = -1;  // of the view last sent in full
    int grid = -1;      // the grid whose boxes were sent
    size_t sent = 0;    //   and how many of them
    Clock::time_point next = Clock::now(), end = Clock::now() + kStreamLife;
};

// The next event for w from v; *last when the stream is over. Boxes already
// sent for the same grid are not sent again.
std::string event_text(const JobView &v, Watch *w, bool *last)
{
    if (v.state != JOB_RUNNING) {
        *last = true;
        return std::string("event: ") + state_name(v.state) + "\ndata: {\"state\": \"" + state_name(v.state) +
               "\", \"error\": " + (v.state == JOB_FAILED ? json_text(v.error) : "null") + "}\n\n";
    }
    const bool reset = v.grid != w->grid;
    if (reset) w->grid = v.grid, w->sent = 0;
    const size_t total = v.boxes.size() / 2, upto = std::min(total, w->sent + kBoxesPerEvent);
    std::string s = "event: progress\ndata: {\"state\": \"running\", " + progress_fields(v) +
                    ", \"reset\": " + (reset ? "true" : "false") + ", \"boxes\": [";
    for (size_t i = w->sent; i < upto; i++) {
        if (i > w->sent) s += ',';
        s += std::to_string(v.boxes[2 * i]) + ',' + std::to_string(v.boxes[2 * i + 1]);
    }
    w->sent = upto;
    w->version = upto < total ? -1 : v.version;  // -1: the rest goes in the next event
    return s + "]}\n\n";
}

bool stream_events(Job *job, Watch *w, const std::atomic<bool> *stopping, httplib::DataSink &sink)
{
    std::this_thread::sleep_until(w->next);
    w->next = Clock::now() + kEventGap;
    std::string text;
    bool last = false;
    {
        std::unique_lock<std::mutex> lock(job->m);
        job->changed.wait_for(lock, std::chrono::seconds(1),
                              [&] { return job->view.version != w->version || *stopping; });
        if (job->view.version != w->version)
            text = event_text(job->view, w, &last);
        else
            text = ": nothing new\n\n";  // a comment, which shows whether the browser still listens
    }
    if (!sink.write(text.data(), text.size())) return false;
    if (last || *stopping || Clock::now() > w->end) sink.done();
    return true;
}

// ---- shutdown on a signal --------------------------------------------------

struct Shutdown {
    httplib::Server *server;
    Registry *registry;
    std::atomic<bool> *stopping;
    sigset_t signals;
};

void *wait_for_signal(void *arg)
{
    Shutdown *s = (Shutdown *)arg;
    int sig;
    sigwait(&s->signals, &sig);
    *s->stopping = true;
    {
        std::lock_guard<std::mutex> lock(s->registry->m);
        for (auto &[n, job] : s->registry->jobs) {
            std::lock_guard<std::mutex> job_lock(job->m);
            job->changed.notify_all();  // event streams see the stop at once
        }
    }
    s->server->stop();
    return nullptr;
}

std::string address_text(const std::string &host, int port)
{
    const bool v6 = host.find(':') != std::string::npos;
    return "http://" + (v6 ? "[" + host + "]" : host) + ":" + std::to_string(port) + "/";
}

}  // namespace

int RunServer(const Options *o, const ExtraOptions *x)
{
    // Signals are taken by one thread (below), never by the server's threads.
    Shutdown shutdown{};
    sigemptyset(&shutdown.signals);
    sigaddset(&shutdown.signals, SIGINT);
    sigaddset(&shutdown.signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &shutdown.signals, nullptr);
    signal(SIGPIPE, SIG_IGN);  // a browser that goes away is a failed write, not the end

    httplib::Server server;
    Registry registry;
    std::atomic<bool> stopping{false};
    const size_t limit = (size_t)x->max_upload;
    const std::string too_large =
        "the image is larger than the server accepts (" + std::to_string(limit) + " bytes; see --max-upload)";
    auto declared_too_large = [limit](const httplib::Request &req) {
        return req.has_header("Content-Length") &&
               strtoull(req.get_header_value("Content-Length").c_str(), nullptr, 10) > limit;
    };

    server.new_task_queue = [] { return new httplib::ThreadPool(24); };
    server.set_payload_max_length(limit);
    // An upload too large is refused from its declared length, before its
    // body is read (and before a client waiting for "100 Continue" sends it).
    server.set_expect_100_continue_handler([&](const httplib::Request &req, httplib::Response &res) {
        if (!declared_too_large(req)) return 100;
        refuse(res, 413, too_large);
        return 413;
    });
    server.set_pre_routing_handler([&](const httplib::Request &req, httplib::Response &res) {
        if (!declared_too_large(req)) return httplib::Server::HandlerResponse::Unhandled;
        refuse(res, 413, too_large);
        res.set_header("Connection", "close");  // its body is never read
        return httplib::Server::HandlerResponse::Handled;
    });
    server.set_error_handler([](const httplib::Request &req, httplib::Response &res) {
        if (!res.body.empty()) return;
        if (res.status == 404) return refuse(res, 404, "nothing here: " + req.path);
        if (res.status == 413) return refuse(res, 413, "the upload is larger than the server accepts (--max-upload)");
        refuse(res, res.status, "the request cannot be answered (HTTP " + std::to_string(res.status) + ")");
    });

    // The body is read here whatever its declared type: a client that labels
    // an image as a form (as many do by default) still sends an image.
    server.Post("/api/analyses", [&](const httplib::Request &req, httplib::Response &res,
                                     const httplib::ContentReader &read) {
        std::string body;
        read([&](const char *data, size_t n) {
            body.append(data, n);
            return body.size() <= limit;
        });
        if (body.size() > limit) return refuse(res, 413, too_large);
        start_analysis(&registry, o, x, req, body, res);
    });
    server.Get(R"(/api/analyses/([^/]+))", [&](const httplib::Request &req, httplib::Response &res) {
        auto job = find_job(&registry, req.matches[1]);
        if (!job) return refuse(res, 404, "no analysis " + std::string(req.matches[1]));
        std::lock_guard<std::mutex> lock(job->m);
        answer(res, 200, state_json(*job, job->view));
    });
    server.Delete(R"(/api/analyses/([^/]+))", [&](const httplib::Request &req, httplib::Response &res) {
        auto job = find_job(&registry, req.matches[1]);
        if (!job) return refuse(res, 404, "no analysis " + std::string(req.matches[1]));
        {
            std::lock_guard<std::mutex> lock(registry.m);
            std::erase_if(registry.jobs, [&](const auto &kv) { return kv.second == job; });
        }
        StopJob(job.get());
        answer(res, 200, "{\"id\": " + json_text(job->id) + ", \"deleted\": true}");
    });
    server.Get(R"(/api/analyses/([^/]+)/(report\.json|plot\.svg))",
               [&](const httplib::Request &req, httplib::Response &res) {
        auto job = find_job(&registry, req.matches[1]);
        if (!job) return refuse(res, 404, "no analysis " + std::string(req.matches[1]));
        std::lock_guard<std::mutex> lock(job->m);
        const JobView &v = job->view;
        if (v.state == JOB_FAILED) return refuse(res, 409, "the analysis failed: " + v.error);
        if (v.state != JOB_FINISHED) return refuse(res, 409, "the analysis has not finished yet");
        const bool svg = req.matches[2] == "plot.svg";
        if (svg && v.svg.empty()) return refuse(res, 500, "the plot could not be drawn");
        res.set_content(svg ? v.svg : v.report, svg ? "image/svg+xml" : "application/json");
    });
    server.Get(R"(/api/analyses/([^/]+)/image\.pbm)", [&](const httplib::Request &req, httplib::Response &res) {
        auto job = find_job(&registry, req.matches[1]);
        if (!job) return refuse(res, 404, "no analysis " + std::string(req.matches[1]));
        res.set_content(job->pbm, "image/x-portable-bitmap");
    });
    server.Get(R"(/api/analyses/([^/]+)/events)", [&](const httplib::Request &req, httplib::Response &res) {
        auto job = find_job(&registry, req.matches[1]);
        if (!job) return refuse(res, 404, "no analysis " + std::string(req.matches[1]));
        // A compressed stream would sit in the compressor's buffer instead
        // of reaching the browser event by event.
        const_cast<httplib::Request &>(req).headers.erase("Accept-Encoding");
        res.set_header("Cache-Control", "no-store");
        auto watch = std::make_shared<Watch>();
        res.set_chunked_content_provider("text/event-stream", [job, watch, &stopping](size_t, httplib::DataSink &sink) {
            return stream_events(job.get(), watch.get(), &stopping, sink);
        });
    });
    server.Get(R"(/.*)", [](const httplib::Request &req, httplib::Response &res) {
        const WebAsset *a = FindWebAsset(req.path.c_str());
        if (!a) return refuse(res, 404, "nothing here: " + req.path);
        res.set_content((const char *)a->data, a->size, a->type);
    });

    int port = x->port;
    if (port == 0 ? (port = server.bind_to_any_port(x->bind)) < 0 : !server.bind_to_port(x->bind, port)) {
        fprintf(stderr, "quorl: cannot serve on %s port %d (in use, or not an address of this machine)\n",
                x->bind.c_str(), x->port);
        return 2;
    }
    if (x->bind != "127.0.0.1" && x->bind != "::1" && x->bind != "localhost")
        fprintf(stderr, "Warning, serving on %s: anyone who can reach this machine can use the server\n",
                x->bind.c_str());
    printf("Quorl is serving on %s - open it in a browser; Ctrl-C stops it\n", address_text(x->bind, port).c_str());
    fflush(stdout);

    shutdown.server = &server;
    shutdown.registry = &registry;
    shutdown.stopping = &stopping;
    pthread_t signal_thread;
    pthread_create(&signal_thread, nullptr, wait_for_signal, &shutdown);
    const bool ok = server.listen_after_bind();
    if (!stopping) kill(getpid(), SIGTERM);  // the server ended by itself: wake the waiter (every thread blocks it)
    pthread_join(signal_thread, nullptr);

    std::lock_guard<std::mutex> lock(registry.m);
    for (auto &[n, job] : registry.jobs) StopJob(job.get());
    return ok || stopping ? 0 : 2;
}
