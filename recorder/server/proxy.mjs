// Hands every request on to the recorder's server on this computer, and its answer back. Bodies are
// streamed in both directions; nothing is kept, changed or looked into.

import http from "node:http";

const kConnectLimit = 5000; // milliseconds

const kBadGateway = "HTTP/1.1 502 Bad Gateway\r\nConnection: close\r\n\r\n";

// RFC 9110, section 7.6.1: these concern one connection only and end here.
const kConnectionHeaders = [
  "connection",
  "keep-alive",
  "proxy-authenticate",
  "proxy-authorization",
  "proxy-connection",
  "te",
  "trailer",
  "transfer-encoding",
  "upgrade",
];

/** { onRequest, onUpgrade } for a server in front of port `port` of this computer. */
export function createProxy(port) {
  // A connection of its own for each request: they cost nothing on one computer, and a kept one may
  // close in the very moment it is used again.
  const forward = (request, headers) => {
    const { method, url: path } = request;
    const upstream = http.request({ host: "127.0.0.1", port, agent: false, method, path, headers });
    limitConnecting(upstream);
    return upstream;
  };

  return {
    onRequest(request, response) {
      const upstream = forward(request, forwardedHeaders(request));
      upstream.on("response", (answer) => {
        response.writeHead(answer.statusCode, answer.statusMessage, endToEnd(answer.headers));
        // An answer that was cut off must look cut off to the visitor too.
        answer.on("error", () => response.destroy());
        answer.pipe(response);
      });
      upstream.on("error", () => refuse(response));
      // The visitor has gone: nobody is left to fetch this for.
      response.on("close", () => upstream.destroy());
      request.pipe(upstream);
    },

    onUpgrade(request, socket, head) {
      const { upgrade } = request.headers;
      const headers = { ...forwardedHeaders(request), connection: "upgrade", upgrade };
      const upstream = forward(request, headers);
      socket.on("error", () => upstream.destroy());
      socket.on("close", () => upstream.destroy());
      upstream.on("upgrade", (answer, peer, peerHead) => {
        socket.write(`HTTP/1.1 101 Switching Protocols\r\n${headerLines(answer.rawHeaders)}\r\n`);
        socket.write(peerHead);
        peer.write(head);
        peer.on("error", () => socket.destroy());
        peer.on("close", () => socket.destroy());
        socket.on("close", () => peer.destroy());
        socket.pipe(peer).pipe(socket);
      });
      // The server would not switch protocols, or is not there.
      const refuseUpgrade = () => socket.end(kBadGateway);
      upstream.on("response", refuseUpgrade);
      upstream.on("error", refuseUpgrade);
      upstream.end();
    },
  };
}

function forwardedHeaders(request) {
  // What a visitor claims to have been forwarded from is dropped: this is where forwarding begins.
  const { forwarded, "x-forwarded-host": host, ...headers } = endToEnd(request.headers);
  return {
    ...headers,
    // Without it a body of unannounced length would go out unframed after some methods, and be
    // taken for a second request.
    ...(request.headers["transfer-encoding"] ? { "transfer-encoding": "chunked" } : {}),
    "x-forwarded-for": request.socket.remoteAddress,
    "x-forwarded-proto": "https",
    ...(request.headers.host ? { "x-forwarded-host": request.headers.host } : {}),
  };
}

function endToEnd(headers) {
  const named = (headers.connection ?? "").toLowerCase().split(",");
  const dropped = new Set([...kConnectionHeaders, ...named.map((name) => name.trim())]);
  return Object.fromEntries(Object.entries(headers).filter(([name]) => !dropped.has(name)));
}

function headerLines(rawHeaders) {
  let lines = "";
  for (let index = 0; index < rawHeaders.length; index += 2) {
    lines += `${rawHeaders[index]}: ${rawHeaders[index + 1]}\r\n`;
  }
  return lines;
}

/** Ends a request whose connection is not made in time; once connected it may take its time. */
function limitConnecting(upstream) {
  upstream.on("socket", (socket) => {
    if (!socket.connecting) return;
    const limit = setTimeout(() => socket.destroy(new Error("no connection")), kConnectLimit);
    socket.once("connect", () => clearTimeout(limit));
    socket.once("close", () => clearTimeout(limit));
  });
}

function refuse(response) {
  if (response.headersSent) {
    response.destroy();
    return;
  }
  response.writeHead(502, { "Content-Type": "text/plain", "Cache-Control": "no-store" });
  response.end("The recorder is not running.\n");
}
