// password.configure: sets the recorder's login, once, and only under a valid account approval.

import { isPresent } from "../lib/files.mjs";
import { isPassword, isUsername, writeLogin } from "../lib/login.mjs";
import { refuse } from "../lib/reply.mjs";

export async function configurePassword({ layout, enrollment }, values) {
  const { username, password, trustLocalProxy } = values;
  const valid = isUsername(username) && isPassword(password) && trustLocalProxy === true;
  if (!valid) refuse("setup_failed");
  if (isPresent(layout.loginFile)) refuse("existing_login_requires_dashboard");
  // Asked again even if this very script saw it approved a moment ago: it may have been withdrawn.
  await enrollment.resume();
  await writeLogin(layout, { username, password, trustLocalProxy });
  return { ok: true, code: "login_configured" };
}
