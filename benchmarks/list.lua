-- wrk: the request whose speed is measured. The token is the environment's.
wrk.method = "POST"
wrk.body = "{}"
wrk.headers["Content-Type"] = "application/json"
wrk.headers["Authorization"] = "Bearer " .. (os.getenv("TOKEN") or "")
