#!/usr/bin/python3
"""quorl --serve, its API: reports equal to quiet runs with the same seed, also
for two analyses at once; the error answers; an upload over the limit refused
from its declared length alone; a clean stop on SIGTERM."""
import json
import os
import socket
import subprocess
import sys
import threading
import time
import urllib.error
import urllib.request

sys.path.insert(0, os.path.dirname(__file__))
from harness import check, equal, finish, run  # noqa: E402


def start_server(prog, *args):
    """The server on a free loopback port; returns (process, base URL)."""
    p = subprocess.Popen([prog, "--serve", "--port", "0", *args], stdout=subprocess.PIPE, text=True)
    line = p.stdout.readline()
    return p, line.split("serving on ")[1].split()[0]


def call(method, url, body=None):
    """(status, parsed JSON or text) of one request."""
    req = urllib.request.Request(url, data=body, method=method)
    try:
        with urllib.request.urlopen(req, timeout=30) as r:
            status, text = r.status, r.read().decode()
    except urllib.error.HTTPError as e:
        status, text = e.code, e.read().decode()
    try:
        return status, json.loads(text)
    except ValueError:
        return status, text


def analyse(base, image, query):
    """Posts image and polls (at most 600 times, 0.1 s apart) until it has ended."""
    status, answer = call("POST", base + "api/analyses?" + query, open(image, "rb").read())
    for _ in range(600):
        status, state = call("GET", base + "api/analyses/" + answer["id"])
        if state["state"] != "running":
            return answer["id"], state
        time.sleep(0.1)
    return answer["id"], state


def quiet_report(prog, image, *args):
    status, out, err = run(prog, "-q", "-i", image, "--json", "-", *args)
    return json.loads(out)


def same_numbers(a, b):
    return {k: v for k, v in a.items() if k != "file"} == {k: v for k, v in b.items() if k != "file"}


prog = os.path.abspath(sys.argv[1])
carpet, dust = os.path.abspath("examples/carpet.tga"), os.path.abspath("examples/dust.tga")
server, base = start_server(prog, "--max-upload", "300K")

# serve-1: alone and two at once, each report equals the quiet run's.
CASES = [(carpet, "seed=7&samples=4", ["--seed", "7", "-n", "4"]),
         (dust, "seed=11&crop=1&fit_range=4:40&factor=1.3&invert=0", ["--seed", "11", "--crop", "--fit-range",
                                                                       "4:40", "-bf", "1.3"])]
for i, (image, query, args) in enumerate(CASES):
    want = quiet_report(prog, image, *args)
    job, state = analyse(base, image, query)
    check("serve-1.%d alone" % i, state["state"] == "finished" and same_numbers(state["report"], want))
    equal("serve-1.%d download" % i, call("GET", base + "api/analyses/%s/report.json" % job)[1], state["report"])
    status, svg = call("GET", base + "api/analyses/%s/plot.svg" % job)
    check("serve-1.%d plot" % i, status == 200 and svg.startswith("<?xml") and "</svg>" in svg)
results = [None, None]
threads = [threading.Thread(target=lambda i=i: results.__setitem__(i, analyse(base, CASES[i][0], CASES[i][1])))
           for i in range(2)]
for t in threads:
    t.start()
for t in threads:
    t.join()
for i, (image, query, args) in enumerate(CASES):
    check("serve-1.%d at once" % i, same_numbers(results[i][1]["report"], quiet_report(prog, image, *args)))

# serve-2: error answers, each a 4xx with a JSON reason.
truncated = open(dust, "rb").read()[:300]
ERRORS = [("serve-2.1", "POST", "api/analyses?seed=x", b"x", 400, "seed wants a whole number"),
          ("serve-2.2", "POST", "api/analyses?colour=red", b"x", 400, 'unknown parameter "colour"'),
          ("serve-2.3", "POST", "api/analyses?samples=many", b"x", 400, "samples wants a whole number"),
          ("serve-2.4", "POST", "api/analyses", b"", 400, "no image"),
          ("serve-2.5", "POST", "api/analyses", b"not an image at all", 422, "Image read failed: not a known image"),
          ("serve-2.6", "POST", "api/analyses", truncated, 422, "Image read failed"),
          ("serve-2.7", "GET", "api/analyses/999", None, 404, "no analysis 999"),
          ("serve-2.8", "GET", "nothing/here", None, 404, "nothing here"),
          ("serve-2.9", "POST", "api/analyses", b"\0" * 400000, 413, "larger than the server accepts")]
for cid, method, path, body, want_status, want_error in ERRORS:
    status, answer = call(method, base + path, body)
    check(cid, status == want_status and want_error in answer["error"], "%d %s" % (status, answer))

# serve-3: a declared length over the limit is refused before any of the body is sent.
with socket.create_connection(("127.0.0.1", int(base.split(":")[2].strip("/"))), timeout=10) as s:
    s.sendall(b"POST /api/analyses HTTP/1.1\r\nHost: x\r\nContent-Length: 999999999\r\n\r\n")
    reply = b""  # the headers and the body may come in separate reads; the server closes after them
    while chunk := s.recv(4096):
        reply += chunk
    reply = reply.decode()
check("serve-3.1 refused unread", reply.startswith("HTTP/1.1 413") and "--max-upload" in reply, reply)

# serve-4: the page and its chart library are served from the program itself.
status, page = call("GET", base)
check("serve-4.1 page", status == 200 and "app.js" in page and "uplot.js" in page)
check("serve-4.2 chart library", call("GET", base + "uplot.js")[0] == 200)

server.terminate()
equal("serve-5.1 SIGTERM ends it cleanly", server.wait(timeout=30), 0)
finish()
