-- What a plain PostgreSQL needs so that programs with Oracle's habits run. See docs/compat.md.
--
--   psql -v ON_ERROR_STOP=1 -d <database> -f compat.sql      (as a superuser)
--
-- One transaction; may be run again at any time.
BEGIN;

SET LOCAL client_min_messages = warning;
SET LOCAL search_path = public, pg_catalog;

DO $$
BEGIN
  IF NOT (SELECT rolsuper FROM pg_catalog.pg_roles WHERE rolname = current_user) THEN
    RAISE EXCEPTION 'compat.sql must be run by a superuser, which "%" is not', current_user
      USING ERRCODE = 'insufficient_privilege',
            HINT = 'It creates a base type, and casts between types of the server itself.';
  END IF;
END
$$;

-- dual: one row, to select expressions from.
DO $$
BEGIN
  IF pg_catalog.to_regclass('public.dual') IS NULL THEN
    CREATE VIEW public.dual AS SELECT 'X'::pg_catalog.varchar(1) AS dummy;
    COMMENT ON VIEW public.dual IS 'One row, to select expressions from';
  END IF;
  GRANT SELECT ON public.dual TO PUBLIC;
END
$$;

-- Character values reach columns of numbers, dates and times by assignment, as they do in
-- INSERT and UPDATE with bound strings. The other direction is the server's own.
DO $$
DECLARE
  source regtype;
  target regtype;
BEGIN
  FOREACH source IN ARRAY '{text,varchar,bpchar}'::regtype[] LOOP
    FOREACH target IN ARRAY '{int2,int4,int8,float4,float8,numeric,date,time,timestamp,
                              timestamptz,interval}'::regtype[] LOOP
      IF NOT EXISTS (SELECT FROM pg_catalog.pg_cast
                     WHERE castsource = source AND casttarget = target) THEN
        EXECUTE pg_catalog.format('CREATE CAST (%s AS %s) WITH INOUT AS ASSIGNMENT',
                                  source, target);
      END IF;
    END LOOP;
  END LOOP;
END
$$;

-- raw: bytes under a name and an OID of their own, stored and shown as bytea is.
DO $$
BEGIN
  IF pg_catalog.to_regtype('public.raw') IS NULL THEN
    CREATE TYPE public.raw;
    CREATE FUNCTION public.rawin(cstring) RETURNS public.raw
      LANGUAGE internal IMMUTABLE STRICT PARALLEL SAFE AS 'byteain';
    CREATE FUNCTION public.rawout(public.raw) RETURNS cstring
      LANGUAGE internal IMMUTABLE STRICT PARALLEL SAFE AS 'byteaout';
    CREATE FUNCTION public.rawrecv(internal) RETURNS public.raw
      LANGUAGE internal IMMUTABLE STRICT PARALLEL SAFE AS 'bytearecv';
    CREATE FUNCTION public.rawsend(public.raw) RETURNS bytea
      LANGUAGE internal IMMUTABLE STRICT PARALLEL SAFE AS 'byteasend';
    CREATE TYPE public.raw (
      INPUT = public.rawin, OUTPUT = public.rawout,
      RECEIVE = public.rawrecv, SEND = public.rawsend, LIKE = pg_catalog.bytea);
    CREATE CAST (public.raw AS bytea) WITHOUT FUNCTION AS IMPLICIT;
    CREATE CAST (bytea AS public.raw) WITHOUT FUNCTION AS ASSIGNMENT;
    COMMENT ON TYPE public.raw IS 'Bytes';
  END IF;
END
$$;

COMMIT;
