#!/usr/bin/python3
"""Transforms records on the workers of a Dask cluster.

    transform.py SCHEDULER STYLESHEET REQUESTS ANSWERS

REQUESTS is a file of JSON Lines, as vexa-xslt worker reads them. The folder ANSWERS gets one file of JSON Lines for
each part of the requests. All workers read and write them.
"""

import subprocess
import sys
import threading

import dask.bag
import distributed

PART = 2**18  # bytes; 2**26 for files of gigabytes


class Transformer(distributed.WorkerPlugin):
    """One vexa-xslt in each worker process, as long as that lives."""

    name = "vexa-xslt"

    def __init__(self, stylesheet):
        self.stylesheet = stylesheet

    def setup(self, worker):
        self.lock = threading.Lock()
        self.start()

    def teardown(self, worker):
        self.process.stdin.close()
        self.process.wait()

    def start(self):
        self.process = subprocess.Popen(["vexa-xslt", "worker", self.stylesheet, "-j", "1"],
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def send(self, lines):
        self.process.stdin.writelines(lines)
        self.process.stdin.flush()

    def transform(self, lines):
        with self.lock:
            # vexa-xslt reads no further while nobody takes its answers: another thread writes.
            sender = threading.Thread(target=self.send, args=[lines])
            sender.start()
            answers = [self.process.stdout.readline() for _ in lines]
            sender.join()
            if b"" in answers:
                self.process.wait()
                self.start()
                raise RuntimeError("vexa-xslt has ended")
        return answers


def transform(part):
    lines = [line.rstrip("\n").encode() + b"\n" for line in part]
    answers = distributed.get_worker().plugins[Transformer.name].transform(lines)
    return [answer.decode().rstrip("\n") for answer in answers]


def main(scheduler, stylesheet, requests, answers):
    # [bag]
    with distributed.Client(scheduler) as client:
        client.register_worker_plugin(Transformer(stylesheet))
        bag = dask.bag.read_text(requests, blocksize=PART)
        bag.map_partitions(transform).to_textfiles(f"{answers}/*.jsonl", last_endline=True, retries=3)
    # [/bag]


if __name__ == "__main__":
    if len(sys.argv) != 5:
        sys.exit(__doc__.strip())
    main(*sys.argv[1:])
