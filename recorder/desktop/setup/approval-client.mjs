// Speaks to the account approval service on this computer. Every call resolves to the service's
// verdict, or to null when there was no usable answer in time; null never means "no".

// Below the 20 seconds that a setup request may take, since every request makes one call at most.
const kAnswerLimit = 10000; // milliseconds
const kBodyLimit = 65536; // bytes
const kDeviceGrant = "urn:ietf:params:oauth:grant-type:device_code";

export class ApprovalClient {
  #origin;
  #answerLimit;

  constructor(origin, answerLimit = kAnswerLimit) {
    this.#origin = origin;
    this.#answerLimit = answerLimit;
  }

  get origin() {
    return this.#origin;
  }

  /** { deviceCode, userCode, intervalMs, lifeMs } */
  async requestApproval({ name, recordingAccess, server, installation }) {
    const answer = await this.#post("/device_authorization", {
      name,
      server,
      installation,
      recording_access: recordingAccess,
    });
    const { device_code, user_code, interval, expires_in } = answer?.body ?? {};
    const usable =
      answer?.status === 200 &&
      [device_code, user_code].every(isText) &&
      isSeconds(interval) &&
      isSeconds(expires_in);
    if (!usable) return null;
    return {
      deviceCode: device_code,
      userCode: user_code,
      intervalMs: interval * 1000,
      lifeMs: expires_in * 1000,
    };
  }

  /** A credential, or { error } with an error word of RFC 8628, section 3.5. */
  async poll(deviceCode) {
    const answer = await this.#post("/token", {
      grant_type: kDeviceGrant,
      device_code: deviceCode,
    });
    return credentialOrRefusal(answer, 400);
  }

  /** { active: false }, or { active: true } with the facts of the approval. */
  async inspect(token) {
    const answer = await this.#post("/introspect", { token });
    if (answer?.status !== 200) return null;
    if (answer.body.active === false) return { active: false };
    const facts = approvalFacts(answer.body);
    return answer.body.active === true && facts ? { active: true, ...facts } : null;
  }

  /** A credential, or { error: "reapproval_required" }. */
  async renew(token, operation) {
    const answer = await this.#post("/renew", { token, operation_id: operation });
    return credentialOrRefusal(answer, 403);
  }

  async #post(path, body) {
    try {
      const response = await fetch(`${this.#origin}${path}`, {
        method: "POST",
        headers: { "Content-Type": "application/json" },
        body: JSON.stringify(body),
        // A redirect would carry a credential to another address.
        redirect: "error",
        signal: AbortSignal.timeout(this.#answerLimit),
      });
      const parsed = JSON.parse(await readText(response));
      return isObject(parsed) ? { status: response.status, body: parsed } : null;
    } catch {
      return null;
    }
  }
}

async function readText(response) {
  const chunks = [];
  let length = 0;
  for await (const chunk of response.body) {
    length += chunk.length;
    if (length > kBodyLimit) throw new Error("answer too long");
    chunks.push(chunk);
  }
  return Buffer.concat(chunks).toString("utf8");
}

function credentialOrRefusal(answer, refusalStatus) {
  if (answer?.status === refusalStatus && isText(answer.body.error)) {
    return { error: answer.body.error };
  }
  const facts = answer?.status === 200 ? approvalFacts(answer.body) : null;
  const token = answer?.body.access_token;
  return facts && isText(token) ? { token, ...facts } : null;
}

function approvalFacts({ peer, server, installation, account, exp }) {
  if (![peer, server, installation, account].every(isText) || !isSeconds(exp)) return null;
  return { peer, server, installation, account, leaseExpiresAt: exp * 1000 };
}

const isText = (value) => typeof value === "string" && value !== "";
const isSeconds = (value) => Number.isSafeInteger(value) && value >= 0;
const isObject = (value) =>
  value !== null && typeof value === "object" && !Array.isArray(value);
