#!/usr/bin/env python3
"""A client of Tarn Service that survives restarts of the service, other clients and firmware updates.

    robust_client.py [--every SECONDS] [--limit SECONDS] [--alive SECONDS]

Prints the notifications, and asks for the MCU version every so many seconds. When another program keeps taking the
service away, it tries again every minute, or when Enter is pressed. Needs Python 3.8 and nothing else;
docs/protocol.md says why it does what it does.
"""
import argparse
import asyncio
import itertools
import json
import os
import sys
import tempfile
import threading
import uuid

MESSAGE_TIME = 0.6  # seconds more for each message that comes before the answer: the service pauses before each
GIVE_UP = 120.0  # seconds after which an answer is taken to have gone to another client, and a query asked again
SECOND_LOOK = 5.0  # seconds
QUIET = 60.0  # seconds without a message, after which the connection is checked
FIRST_PAUSE = 1.0  # seconds between a connection and the next, and between two attempts to connect
LONGEST_PAUSE = 10.0  # seconds between two attempts after many failures
MOST_LOSSES = 3  # after so many in a row another program is taken to use the service
LOSS_MEMORY = 300.0  # seconds after which a loss does not count together with the next one
TAKEN_PAUSE = 60.0  # seconds until the next attempt while another program uses the service
NOTIFICATIONS = {"changeAccessoryType", "getTarnChargingStatus", "getTarnBatteryNum", "getKVaneLedLight",
                 "getKvaneChargingStatus", "getKvaneBatteryNum", "disengagedGraphics", "getSmartChargingStatus"}


class Lost(Exception):
    """The connection is of no use any more: connect anew."""


class Silent(Lost):
    """The service does not talk to us any more, although the connection is there."""


class NoAnswer(Exception):
    """The service is there and talks to us, but the answer did not come."""


async def open_pipe():
    if sys.platform != "win32":
        return await asyncio.open_unix_connection(os.path.join(tempfile.gettempdir(), "tarnPipe"))
    loop = asyncio.get_running_loop()
    reader = asyncio.StreamReader()
    protocol = asyncio.StreamReaderProtocol(reader)
    transport, _ = await loop.create_pipe_connection(lambda: protocol, r"\\.\pipe\tarnPipe")
    return reader, asyncio.StreamWriter(transport, protocol, reader, loop)


def take_objects(buffer):
    """Takes the complete JSON objects off the front of a bytearray; the rest stays for the next read."""
    objects, depth, in_string, escaped, begin = [], 0, False, False, 0
    for at, byte in enumerate(bytes(buffer)):
        if in_string:
            if escaped:
                escaped = False
            elif byte == ord("\\"):
                escaped = True
            elif byte == ord('"'):
                in_string = False
        elif byte == ord('"'):
            in_string = True
        elif byte == ord("{"):
            depth += 1
        elif byte == ord("}"):
            depth -= 1
            if depth == 0:
                objects.append(json.loads(bytes(buffer[begin:at + 1])))
                begin = at + 1
    del buffer[:begin]
    return objects


class Connection:
    ids = (f"{uuid.uuid4()}-{number}" for number in itertools.count())  # unlike those of any other program

    def __init__(self, reader, writer, options):
        self.reader, self.writer, self.options = reader, writer, options
        self.awaited = {}  # id: future of the answer
        self.clock = asyncio.get_running_loop().time
        self.messages, self.last_message = 0, self.clock()
        self.proven = False  # what comes before the first answer may have waited for a client for days
        self.reading = asyncio.ensure_future(self.read())

    async def read(self):
        buffer = bytearray()
        while True:
            try:
                arrived = await self.reader.read(65536)
            except ConnectionError:
                arrived = b""
            if not arrived:
                raise Lost("the service has gone")
            buffer += arrived
            for message in take_objects(buffer):
                self.messages += 1
                self.last_message = self.clock()
                self.take(message)

    def take(self, message):
        if message.get("id") in self.awaited:
            self.awaited.pop(message["id"]).set_result(message)
        elif message.keys() == {"cmd", "data"} and message["cmd"] in NOTIFICATIONS:
            say("event" if self.proven else "old event", message["cmd"], message["data"])
        # else: an answer to another client, or a late one to us from before we connected anew

    def send(self, command, data=None):
        """One write, one request; the future of its answer."""
        request = {"cmd": command, "id": next(self.ids)}
        if data is not None:
            request["data"] = data
        answer = self.awaited[request["id"]] = asyncio.get_running_loop().create_future()
        self.writer.write(json.dumps(request).encode())
        return answer

    async def wait(self, answer, limit):
        """True when the answer came in time; each message that comes before it gives more time."""
        began, before = self.clock(), self.messages
        while not answer.done():
            left = began + limit + MESSAGE_TIME * (self.messages - before) - self.clock()
            if left <= 0:
                return False
            await asyncio.wait({answer, self.reading}, timeout=left, return_when=asyncio.FIRST_COMPLETED)
            self.check()
        return True

    def check(self):
        if self.reading.done():
            error = self.reading.exception()
            raise error if isinstance(error, Lost) else Lost(f"the connection broke: {error}")

    async def prove(self):
        """What is attached. It needs no EC, so an answer must come as long as the service talks to us."""
        answer = self.send("getAccessoryType")
        if not await self.wait(answer, self.options.alive):
            raise Silent("another client gets the service's messages")
        self.proven = True
        return answer.result()["data"]

    async def ask(self, command, data=None):
        """The answer. Callers take turns: the next request is written when this one is answered."""
        answer, began = self.send(command, data), self.clock()
        if not await self.wait(answer, self.options.limit):
            await self.prove()
            say("busy", command)  # the EC is reserved or stuck; asking again would only queue up
        while not await self.wait(answer, self.options.limit):
            await self.prove()
            if self.clock() - began > GIVE_UP:
                raise NoAnswer(command)
        return answer.result()

    async def rest(self, seconds):
        end = self.clock() + seconds
        while self.clock() < end:
            await asyncio.wait({self.reading}, timeout=min(1.0, end - self.clock()))
            self.check()
            if self.clock() - self.last_message > QUIET:
                await self.prove()

    def close(self):
        self.reading.cancel()
        self.writer.close()


class Losses:
    """Counts how often the service has fallen silent, so that two programs do not take it from each other for ever."""

    def __init__(self):
        self.count, self.last = 0, 0.0

    def add(self, now):
        self.count = self.count + 1 if self.count and now - self.last <= LOSS_MEMORY else 1
        self.last = now

    def pause(self):
        return TAKEN_PAUSE if self.count >= MOST_LOSSES else FIRST_PAUSE


async def serve(connection, options):
    # What is attached already is not announced, and the five days of smart charging begin when a client asks.
    attached = await connection.prove()
    say("connected", attached)
    say("smart charging", (await connection.ask("getSmartChargingStatus"))["data"])
    if attached == "disconnected":  # as a service says that has just started and has not looked yet
        await connection.rest(SECOND_LOOK)
        say("attached", await connection.prove())
    while True:
        try:
            say("version", (await connection.ask("getMcuVersion"))["data"])
        except NoAnswer:
            pass  # a query may be asked again
        await connection.rest(options.every)


def say(*words):
    print(*words, flush=True)


def watch_keyboard(loop, asked):
    while os.read(0, 4096):  # Enter: the user wants to connect now
        loop.call_soon_threadsafe(asked.set)


async def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--every", type=float, default=10.0)
    parser.add_argument("--limit", type=float, default=30.0, help="for what needs the EC")
    parser.add_argument("--alive", type=float, default=10.0, help="for what does not")
    options = parser.parse_args()
    loop, asked = asyncio.get_running_loop(), asyncio.Event()
    threading.Thread(target=watch_keyboard, args=(loop, asked), daemon=True).start()
    losses, failure_pause = Losses(), FIRST_PAUSE
    while True:
        connection, pause = None, FIRST_PAUSE
        try:
            connection = Connection(*await open_pipe(), options)
            failure_pause = FIRST_PAUSE
            await serve(connection, options)
        except Silent as loss:
            say("lost:", loss)
            losses.add(loop.time())
            pause = losses.pause()
            if losses.count == MOST_LOSSES:
                say("another program uses the service; Enter connects again")
        except Lost as loss:
            say("lost:", loss)
        except PermissionError:
            raise SystemExit("access denied: on Windows this needs an elevated prompt")
        except OSError:  # no service, or it is in its first seconds
            pause, failure_pause = failure_pause, min(failure_pause * 1.5, LONGEST_PAUSE)
        if connection:
            connection.close()  # before the next one is opened, not after
        asked.clear()
        try:
            await asyncio.wait_for(asked.wait(), pause)
            losses = Losses()
        except asyncio.TimeoutError:
            pass


if __name__ == "__main__":
    try:
        asyncio.run(main())
    except KeyboardInterrupt:
        pass
